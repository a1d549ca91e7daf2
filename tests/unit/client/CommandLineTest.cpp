#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "client/FrameFormat.h"
#include "tests/unit/client/FakeService.h"
#include "tools/reticlectl/CommandLine.h"

namespace reticlectl {

namespace {

using reticle::encodeFrame;
using reticle::test::answering;
using reticle::test::FakePeer;
using reticle::test::FakeService;

constexpr const char* LIST_REQUEST = R"({"action":"RETICLES_GET_ALL"})";
constexpr const char* ONE_RETICLE =
    R"({"result":"OK","reticles":[)"
    R"({"index":4,"name":"Dot","data":"<svg stroke=\"red\"/>\n","isDeletable":true,"isActive":true}]})";
constexpr const char* ONE_RETICLE_TABLE =
    "INDEX  ACTIVE  NAME  DELETABLE  COLOUR  BYTES\n"
    "    4  *       Dot   yes        red        20\n";

struct Outcome {
    ExitStatus status;
    std::string out;
    std::string err;
};

/// Both output streams lead to a terminal.
Terminal onTerminal() {
    Terminal terminal;
    terminal.takesOutput = true;
    terminal.takesErrors = true;
    return terminal;
}

Outcome runProgram(const std::vector<std::string>& arguments, const std::string& input = "",
                   const Terminal& terminal = {}) {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    const ExitStatus status = run(arguments, in, out, err, terminal);
    return {status, out.str(), err.str()};
}

/// What a run against a service with one answer did, and the request that it sent, if any.
struct Exchange {
    Outcome outcome;
    std::string request;
};

Exchange exchange(std::vector<std::string> arguments, const std::string& answer = ONE_RETICLE,
                  const std::string& input = "", const Terminal& terminal = {}) {
    std::vector<std::string> requests;
    Outcome outcome;
    {
        const FakeService service(answering(encodeFrame(answer), &requests));
        arguments.insert(arguments.begin(), {"--port", std::to_string(service.port())});
        outcome = runProgram(arguments, input, terminal);
    }
    return {outcome, requests.empty() ? "" : requests.front()};
}

/// A run against a service that gives these answers in turn, and none after them.
Outcome runInTurn(const std::vector<std::string>& answers, std::vector<std::string> arguments,
                  std::vector<std::string>* requests = nullptr) {
    const FakeService service([&](FakePeer& peer) {
        for (const std::string& answer : answers) {
            const std::string request = peer.receiveRequest();
            if (requests != nullptr) {
                requests->push_back(request);
            }
            peer.send(encodeFrame(answer));
        }
        peer.waitForClose();
    });
    arguments.insert(arguments.begin(), {"--port", std::to_string(service.port())});
    return runProgram(arguments);
}

Outcome runAgainst(FakeService::Script script, const std::string& timeout = "60") {
    const FakeService service(std::move(script));
    return runProgram({"--port", std::to_string(service.port()), "--timeout", timeout, "list"});
}

void expectOneErrorLine(const Outcome& outcome, ExitStatus status, const std::string& part) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_TRUE(outcome.err.starts_with("reticlectl: ")) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_NE(outcome.err.find(part), std::string::npos) << outcome.err;
}

void expectUsageError(const std::vector<std::string>& arguments, const std::string& part) {
    const Exchange run = exchange(arguments);
    expectOneErrorLine(run.outcome, ExitStatus::USAGE, part);
    EXPECT_EQ(run.outcome.out, "");
    EXPECT_EQ(run.request, "");
}

/// A directory of its own for each test.
class CommandLine : public testing::Test {
protected:
    CommandLine() {
        std::string pattern = testing::TempDir() + "reticlectl-XXXXXX";
        _directory = ::mkdtemp(pattern.data());
    }
    ~CommandLine() override {
        std::filesystem::remove_all(_directory);
        ::unsetenv("RETICLED_HOST");
        ::unsetenv("RETICLED_PORT");
    }

    std::string writeFile(const std::string& name, const std::string& content) {
        std::ofstream(pathOf(name), std::ios::binary) << content;
        return pathOf(name);
    }
    std::string readFile(const std::string& name) {
        std::ostringstream text;
        text << std::ifstream(pathOf(name), std::ios::binary).rdbuf();
        return text.str();
    }
    [[nodiscard]] std::string pathOf(const std::string& name) const { return _directory / name; }

private:
    std::filesystem::path _directory;
};

TEST_F(CommandLine, ListPrintsTheTable) {
    const Exchange run = exchange({"list"});
    EXPECT_EQ(run.request, LIST_REQUEST);
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_EQ(run.outcome.out, ONE_RETICLE_TABLE);
    EXPECT_EQ(run.outcome.err, "");
}

TEST_F(CommandLine, JsonPrintsTheReplyAsItCame) {
    EXPECT_EQ(exchange({"list", "--json"}).outcome.out, std::string(ONE_RETICLE) + '\n');
    EXPECT_EQ(exchange({"--json", "list"}).outcome.out, std::string(ONE_RETICLE) + '\n');
    EXPECT_EQ(exchange({"activate", "4", "--json"}).outcome.out, std::string(ONE_RETICLE) + '\n');
}

TEST_F(CommandLine, AnEmptyListIsDone) {
    const Exchange run = exchange({"list"}, R"({"result":"OK","reticles":null})");
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_TRUE(run.outcome.out.starts_with("no reticles: ")) << run.outcome.out;
}

TEST_F(CommandLine, ActivatePrintsTheListAfterIt) {
    const Exchange run = exchange({"activate", "4"});
    EXPECT_EQ(run.request, R"({"action":"RETICLE_SET_ACTIVE","index":4})");
    EXPECT_EQ(run.outcome.out, ONE_RETICLE_TABLE);
}

TEST_F(CommandLine, AddSendsFilesAsTheyAre) {
    const std::string first = writeFile("first.svg", "<svg>\r\n\xC3\xA9</svg>\n");
    const Exchange run = exchange({"add", "One", first});
    EXPECT_EQ(run.request,
              "{\"action\":\"RETICLES_ADD_OR_UPDATE\",\"reticles\":["
              "{\"data\":\"<svg>\\r\\n\xC3\xA9</svg>\\n\",\"name\":\"One\"}]}");
    EXPECT_EQ(run.outcome.out, ONE_RETICLE_TABLE);
}

TEST_F(CommandLine, AddReadsStandardInput) {
    EXPECT_EQ(
        exchange({"add", "One", "-"}, ONE_RETICLE, "piped\n").request,
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"piped\n","name":"One"}]})");
}

TEST_F(CommandLine, NamesMayLookLikeAnything) {
    const std::string file = writeFile("f", "x");
    for (const char* name : {"list", "[a,b]", "[a]", "", "{}", "7", "a b"}) {
        EXPECT_EQ(exchange({"add", name, file}).request,
                  R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"x","name":")" +
                      std::string(name) + R"("}]})");
    }
}

TEST_F(CommandLine, UpdateNamesIndexNameAndFile) {
    const std::string file = writeFile("f", "new");
    EXPECT_EQ(
        exchange({"update", "4", "Dot 2", file}).request,
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"new","index":4,"name":"Dot 2"}]})");
}

TEST_F(CommandLine, DeleteTakesSeveralIndices) {
    std::vector<std::string> requests;
    const Outcome outcome =
        runInTurn({ONE_RETICLE, ONE_RETICLE, ONE_RETICLE}, {"delete", "3", "1", "3"}, &requests);
    EXPECT_EQ(requests,
              (std::vector<std::string>{R"({"action":"RETICLES_DELETE","indices":[3]})",
                                        R"({"action":"RETICLES_DELETE","indices":[1]})",
                                        R"({"action":"RETICLES_DELETE","indices":[3]})"}));
    EXPECT_EQ(outcome.out, ONE_RETICLE_TABLE);
}

TEST_F(CommandLine, ShowPrintsTheDataByteForByte) {
    const Exchange run = exchange({"show", "4"});
    EXPECT_EQ(run.request, LIST_REQUEST);
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_EQ(run.outcome.out, "<svg stroke=\"red\"/>\n");
}

TEST_F(CommandLine, ShowWritesToAFile) {
    const Exchange run = exchange({"show", "4", "--output", pathOf("out.svg")});
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_EQ(run.outcome.out, "");
    EXPECT_EQ(readFile("out.svg"), "<svg stroke=\"red\"/>\n");
}

TEST_F(CommandLine, ShowAsJsonIsThatReticle) {
    EXPECT_EQ(exchange({"show", "4", "--json"}).outcome.out,
              R"({"data":"<svg stroke=\"red\"/>\n","index":4,"isActive":true,)"
              R"("isDeletable":true,"name":"Dot"})"
              "\n");
}

TEST_F(CommandLine, ShowOnATerminalCannotSteerIt) {
    const std::string reply =
        R"({"result":"OK","reticles":[{"index":4,"name":"","data":"a\n\tb\u001b[2J\u009b\u202e",)"
        R"("isDeletable":true,"isActive":true}]})";
    EXPECT_EQ(exchange({"show", "4"}, reply).outcome.out, "a\n\tb\x1B[2J\xC2\x9B\xE2\x80\xAE");
    EXPECT_EQ(exchange({"show", "4"}, reply, "", onTerminal()).outcome.out,
              "a\n\tb\\x1B[2J\\x9B\\u202E");
}

TEST_F(CommandLine, ShowToldToATerminalSaysThatTheColourIsFixed) {
    const std::string note =
        "reticlectl: note: the user's colour is put in; stored again as it is, it stays fixed, but "
        "for --template\n";
    EXPECT_EQ(exchange({"show", "4"}, ONE_RETICLE, "", onTerminal()).outcome.err, note);
    EXPECT_EQ(exchange({"show", "4"}).outcome.err, "");
}

TEST_F(CommandLine, ShowAsATemplatePutsThePlaceholderBack) {
    EXPECT_EQ(exchange({"show", "4", "--template"}).outcome.out, "<svg stroke=\"user_color\"/>\n");
    EXPECT_EQ(exchange({"show", "4", "--template", "--json"}).outcome.out,
              R"({"data":"<svg stroke=\"user_color\"/>\n","index":4,"isActive":true,)"
              R"("isDeletable":true,"name":"Dot"})"
              "\n");
    EXPECT_EQ(exchange({"show", "4", "--template"}, ONE_RETICLE, "", onTerminal()).outcome.err,
              "reticlectl: note: each \"red\" is \"user_color\" now\n");
}

TEST_F(CommandLine, ShowAsATemplateTakesEachValueThatIsTheColour) {
    const std::string reply =
        R"({"result":"OK","reticles":[{"index":4,"name":"","isDeletable":true,"isActive":true,)"
        R"("data":"<svg><a fill=\"#F00\" stroke='#F00'/><b stroke=\"#F00\"/><c fill=\"#F000\"/>"}]})";
    EXPECT_EQ(
        exchange({"show", "4", "--template"}, reply).outcome.out,
        R"(<svg><a fill="user_color" stroke='#F00'/><b stroke="user_color"/><c fill="#F000"/>)");
}

TEST_F(CommandLine, ShowAsATemplateFailsWhereTheColourCannotBeTold) {
    for (const char* data : {"no drawing", "<svg stroke='red'/>"}) {
        const std::string reply =
            R"({"result":"OK","reticles":[{"index":4,"name":"","isDeletable":true,"isActive":true,)"
            R"("data":")" +
            std::string(data) + R"("}]})";
        const Exchange run =
            exchange({"show", "4", "--template", "--output", pathOf("out.svg")}, reply);
        expectOneErrorLine(run.outcome, ExitStatus::REFUSED, "no colour in double quotes");
        EXPECT_FALSE(std::filesystem::exists(pathOf("out.svg"))) << data;
    }
}

TEST_F(CommandLine, ListOfNamesIsForScripts) {
    const std::string reply =
        R"({"result":"OK","reticles":[)"
        R"({"index":4,"name":"a\tb\n","data":"x","isDeletable":true,"isActive":true},)"
        R"({"index":null,"name":"none","data":"x","isDeletable":true,"isActive":true},)"
        R"({"index":12,"name":"","data":"x","isDeletable":true,"isActive":true}]})";
    EXPECT_EQ(exchange({"list", "--names"}, reply).outcome.out, "4\ta\\tb\\n\n12\t\n");
    EXPECT_EQ(exchange({"list", "--names", "--json"}).outcome.out, std::string(ONE_RETICLE) + '\n');
    expectUsageError({"list", "--names", "--watch", "1"}, "--watch");
}

TEST_F(CommandLine, JsonCannotSteerTheTerminal) {
    EXPECT_EQ(exchange({"list", "--json"},
                       "{\"result\":\"OK\",\n\t\"reticles\":null,\"x\":\"\x1B\xC2\x9B\xE2\x80\xAE"
                       "\xFF\xC3\xA9\"}")
                  .outcome.out,
              "{\"result\":\"OK\",\n\t\"reticles\":null,\"x\":\"\\u001B\\u009B\\u202E"
              "\\uFFFD\xC3\xA9\"}\n");
}

TEST_F(CommandLine, ShowOfAnIndexThatIsNotListedIsARefusal) {
    const Exchange run = exchange({"show", "5", "--output", pathOf("out.svg")});
    expectOneErrorLine(run.outcome, ExitStatus::REFUSED, "no reticle of index 5");
    EXPECT_FALSE(std::filesystem::exists(pathOf("out.svg")));
}

TEST_F(CommandLine, ShowIntoAnImpossibleFileIsAUsageError) {
    const Exchange run = exchange({"show", "4", "--output", pathOf("none/out.svg")});
    expectOneErrorLine(run.outcome, ExitStatus::USAGE, "No such file or directory");
}

TEST_F(CommandLine, GalleryPrintsAPage) {
    const Exchange run = exchange({"gallery"});
    EXPECT_EQ(run.request, LIST_REQUEST);
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_TRUE(run.outcome.out.starts_with("<!DOCTYPE html>\n")) << run.outcome.out;
    EXPECT_NE(run.outcome.out.find(">Dot</h2>"), std::string::npos);
    EXPECT_NE(run.outcome.out.find("id=\"auto\" checked>"), std::string::npos);
    EXPECT_TRUE(exchange({"gallery", "--output", "-"}).outcome.out.starts_with("<!DOCTYPE"));
}

TEST_F(CommandLine, GalleryWritesToAFile) {
    const Exchange run =
        exchange({"gallery", "--background", "grey", "--output", pathOf("out.html")});
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_EQ(run.outcome.out, "");
    EXPECT_NE(readFile("out.html").find("id=\"grey\" checked>"), std::string::npos);
}

TEST_F(CommandLine, GalleryAsJsonIsTheReplyItself) {
    EXPECT_EQ(exchange({"gallery", "--json"}).outcome.out, std::string(ONE_RETICLE) + '\n');
}

TEST_F(CommandLine, GalleryDoesNotFloodATerminal) {
    const Exchange run = exchange({"gallery"}, ONE_RETICLE, "", onTerminal());
    expectOneErrorLine(run.outcome, ExitStatus::USAGE, "name a file with --output FILE.html");
    EXPECT_EQ(run.outcome.out, "");
    const Exchange asked = exchange({"gallery", "--output", "-"}, ONE_RETICLE, "", onTerminal());
    EXPECT_TRUE(asked.outcome.out.starts_with("<!DOCTYPE"));
}

TEST_F(CommandLine, GalleryKnowsItsBackgrounds) {
    expectUsageError({"gallery", "--background", "Pink"}, "--background");
}

TEST_F(CommandLine, ARefusalInTheMiddleSaysWhatIsDoneAndWhatIsNot) {
    const Outcome outcome = runInTurn(
        {ONE_RETICLE, ONE_RETICLE, R"({"result":"RETICLE_INDEX_NOT_FOUND"})", ONE_RETICLE},
        {"delete", "8", "7", "8", "6", "5"});
    EXPECT_EQ(outcome.status, ExitStatus::REFUSED);
    EXPECT_EQ(outcome.err,
              "reticlectl: refused by the device: RETICLE_INDEX_NOT_FOUND: the device has no "
              "reticle of this index: list the reticles to see which there are\n"
              "done (2): 8, 7\n"
              "refused: 8\n"
              "not tried (2): 6, 5\n");
    EXPECT_EQ(outcome.out, ONE_RETICLE_TABLE);
}

TEST_F(CommandLine, ARefusalInTheMiddleAsJsonIsOneDocument) {
    const std::string file = writeFile("f", "x");
    const Outcome outcome =
        runInTurn({ONE_RETICLE, R"({"result":"RETICLES_COUNT_OUT_OF_BOUNDS"})", ONE_RETICLE},
                  {"--json", "add", "a", file, "b\x1B", file, "c", file});
    EXPECT_EQ(outcome.status, ExitStatus::REFUSED);
    EXPECT_EQ(outcome.out, R"({"done":["a"],"notTried":["c"],"refused":"b\u001b",)"
                           R"("result":"RETICLES_COUNT_OUT_OF_BOUNDS","reticles":[)"
                           R"({"data":"<svg stroke=\"red\"/>\n","index":4,"isActive":true,)"
                           R"("isDeletable":true,"name":"Dot"}]})"
                           "\n");
    EXPECT_TRUE(outcome.err.ends_with("done (1): a\nrefused: b\\x1B\nnot tried (1): c\n"))
        << outcome.err;
}

TEST_F(CommandLine, SilenceInTheMiddleSaysWhatMayBeDone) {
    const Outcome outcome =
        runInTurn({ONE_RETICLE}, {"--timeout", "1", "--json", "delete", "8", "7"});
    EXPECT_EQ(outcome.status, ExitStatus::NO_REPLY);
    EXPECT_TRUE(
        outcome.err.ends_with("may have been carried out all the same: list the reticles "
                              "before you repeat it\ndone (1): 8\nmay be done or not: 7\n"))
        << outcome.err;
    EXPECT_TRUE(outcome.out.starts_with(
        R"({"error":{"done":[8],"exitStatus":4,"kind":"NO_REPLY","message":)"))
        << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with(R"("notTried":[],"uncertain":7}})"
                                      "\n"))
        << outcome.out;
}

TEST_F(CommandLine, AnEmptyFileIsAUsageError) {
    expectUsageError({"add", "E", writeFile("f", "")}, "the data of reticle \"E\" is empty: ");
    expectUsageError({"update", "1", "E", writeFile("f", "")}, "is empty: ");
}

TEST_F(CommandLine, AColourThatWillNotFollowTheUserIsWarnedOf) {
    const auto warning = [this](const std::string& data) {
        const std::string file = writeFile("f", data);
        const std::string ofAdd = exchange({"add", "E", file}).outcome.err;
        EXPECT_EQ(exchange({"update", "4", "E", file}).outcome.err, ofAdd);
        return ofAdd;
    };
    EXPECT_EQ(warning(R"(<svg stroke="user_color"/>)"), "");
    EXPECT_EQ(warning("<svg stroke='user_color'/>"),
              "reticlectl: warning: \"E\" will not show the user's colour: its data has user_color "
              "without the double quotes around it\n");
    EXPECT_EQ(warning("<svg stroke='red'/>"),
              "reticlectl: warning: \"E\" will not show the user's colour: its data has no "
              "\"user_color\", double quotes included\n");
}

TEST_F(CommandLine, HelpIsACommandToo) {
    EXPECT_EQ(runProgram({"help"}).out, runProgram({"--help"}).out);
    EXPECT_EQ(runProgram({"help", "add"}).out, runProgram({"add", "--help"}).out);
    EXPECT_EQ(runProgram({"help", "add"}).status, ExitStatus::DONE);
    expectUsageError({"help", "lst"}, "unknown command lst");
}

TEST_F(CommandLine, AMistakeNamesTheHelpThatTellsMore) {
    expectUsageError({"add", "Dot"}, ": see reticlectl add --help\n");
    expectUsageError({"list", "--port", "0"}, ": see reticlectl --help\n");
    expectUsageError({"lst"}, ": see reticlectl --help\n");
}

TEST_F(CommandLine, AMisspeltCommandGetsTheOneThatIsNearest) {
    expectUsageError({"lst"}, "unknown command or option lst (did you mean list?): see ");
    expectUsageError({"--timeout", "5", "pong"}, " pong (did you mean ping?): see ");
    expectUsageError({"sohw", "4"}, " sohw (did you mean show?): see ");
    expectUsageError({"act"}, " act (did you mean activate?): see ");
    expectUsageError({"help", "galery"}, "unknown command galery (did you mean gallery?): see ");
    for (const std::string word : {"ab", "remove", "lxyt", ""}) {
        expectUsageError({word}, "unknown command or option " + word + ": see ");
    }
}

TEST_F(CommandLine, TheEnvironmentNamesTheDevice) {
    const auto port = std::to_string(reticle::test::unusedPort());
    ::setenv("RETICLED_HOST", "127.0.0.2", 1);
    ::setenv("RETICLED_PORT", port.c_str(), 1);
    expectOneErrorLine(runProgram({"list"}), ExitStatus::CANNOT_CONNECT,
                       "cannot connect to 127.0.0.2:" + port + ": ");
}

TEST_F(CommandLine, TheCommandLineBeatsTheEnvironment) {
    ::setenv("RETICLED_HOST", "host.invalid", 1);
    ::setenv("RETICLED_PORT", "http", 1);
    EXPECT_EQ(exchange({"--host", "127.0.0.1", "list"}).outcome.out, ONE_RETICLE_TABLE);
    EXPECT_EQ(exchange({"list", "--host", "127.0.0.1"}).outcome.out, ONE_RETICLE_TABLE);
}

TEST_F(CommandLine, AnEmptyVariableNamesNothing) {
    ::setenv("RETICLED_HOST", "", 1);
    ::setenv("RETICLED_PORT", "", 1);
    EXPECT_EQ(exchange({"list"}).outcome.out, ONE_RETICLE_TABLE);
}

TEST_F(CommandLine, ABadPortInTheEnvironmentIsToldWithItsVariable) {
    for (const char* port : {"0", "65536", "http", "3451 "}) {
        ::setenv("RETICLED_PORT", port, 1);
        const Outcome outcome = runProgram({"list"});
        expectOneErrorLine(
            outcome, ExitStatus::USAGE,
            "RETICLED_PORT: \"" + std::string(port) + "\" is not a number from 1 to 65535");
    }
    EXPECT_EQ(runProgram({"help"}).status, ExitStatus::DONE);
}

TEST_F(CommandLine, NumbersThatAreTooLargeAreToldTheirRange) {
    expectUsageError({"activate", "2147483648"},
                     R"("2147483648" is not a number from 0 to 2147483647)");
    expectUsageError({"ping", "--count", "99999999999999999999"},
                     R"("99999999999999999999" is not a number from 0 to 1000000000)");
    expectUsageError({"list", "--port", "99999999999999999999"},
                     R"("99999999999999999999" is not a number from 1 to 65535)");
    expectUsageError({"list", "--timeout", "99999999999999999999"}, "from 0.001 to 86400");
}

TEST_F(CommandLine, ARefusalSaysItsNameAndMeaning) {
    const Exchange run = exchange({"delete", "0"}, R"({"result":"RETICLE_CANT_BE_DELETED"})");
    expectOneErrorLine(run.outcome, ExitStatus::REFUSED,
                       "RETICLE_CANT_BE_DELETED: factory reticles");
    EXPECT_EQ(run.outcome.out, "");
}

TEST_F(CommandLine, ARefusalWithoutANameSaysSo) {
    const Exchange run = exchange({"list"}, R"({"result":""})");
    expectOneErrorLine(
        run.outcome, ExitStatus::REFUSED,
        "\"\": a code that the service has no name for, or an answer without any: check");
}

TEST_F(CommandLine, ARefusalAsJsonIsPrintedToo) {
    const Exchange run = exchange({"list", "--json"}, R"({"result":"UNKNOWN_ACTION"})");
    expectOneErrorLine(run.outcome, ExitStatus::REFUSED, "UNKNOWN_ACTION");
    EXPECT_EQ(run.outcome.out, "{\"result\":\"UNKNOWN_ACTION\"}\n");
}

TEST_F(CommandLine, AResultNameCannotSteerTheTerminal) {
    const Exchange run = exchange({"list"}, R"({"result":"a\u001b[2Jb\nc"})");
    expectOneErrorLine(run.outcome, ExitStatus::REFUSED, "a\\x1B[2Jb\\nc");
}

TEST_F(CommandLine, WrongCommandLinesAreUsageErrors) {
    expectUsageError({}, "A subcommand is required");
    expectUsageError({"lst"}, "unknown command or option lst");
    expectUsageError({"list", "--jsno"}, "--jsno");
    expectUsageError({"list", "--timeout", "0"}, "--timeout");
    expectUsageError({"list", "--timeout", "nan"}, "--timeout");
    expectUsageError({"list", "--timeout", "1e9"}, "--timeout");
    expectUsageError({"list", "--host"}, "--host");
    expectUsageError({"activate"}, "INDEX is required");
    expectUsageError({"activate", "1", "2"}, "2");
    expectUsageError({"update", "1", "Dot"}, "FILE is required");
    expectUsageError({"add", "Dot"}, "FILE is required");
}

TEST_F(CommandLine, OnlyDecimalNumbersAreIndices) {
    for (const char* index :
         {"true", "010", "0x1", "-1", "1.5", "", "[1]", " 1", "1,2", "99999999999"}) {
        expectUsageError({"activate", index}, "INDEX");
        expectUsageError({"delete", "1", index}, "INDEX");
    }
}

TEST_F(CommandLine, APortBeyondTheLastIsAUsageError) {
    expectOneErrorLine(runProgram({"list", "--port", "65536"}), ExitStatus::USAGE, "--port");
    expectOneErrorLine(runProgram({"list", "--port", "0"}), ExitStatus::USAGE, "--port");
}

TEST_F(CommandLine, ANameWithoutFileIsAUsageError) {
    expectUsageError({"add", "One", writeFile("f", "x"), "Two"}, "a NAME without FILE");
}

TEST_F(CommandLine, StandardInputCanBeReadOnce) {
    expectUsageError({"add", "One", "-", "Two", "-"}, "standard input can be read for one");
}

TEST_F(CommandLine, AFileThatCannotBeReadIsAUsageError) {
    expectUsageError({"add", "One", pathOf("none")}, "none: No such file or directory");
    expectUsageError({"update", "1", "One", pathOf("")}, ": Is a directory");
}

TEST_F(CommandLine, WhatJsonCannotCarryIsAUsageError) {
    expectUsageError({"add", "One", writeFile("f", "\xFF")}, "is not UTF-8");
    expectUsageError({"add", "One", writeFile("f", std::string("a\0b", 3))}, "holds a NUL");
    expectUsageError({"add", "caf\xE9", writeFile("f", "x")}, "is not UTF-8");
}

TEST_F(CommandLine, WhatDoesNotFitAFrameIsAUsageError) {
    expectUsageError({"add", "One", writeFile("f", std::string(4194304, 'x'))}, "too large");
    expectUsageError({"update", "1", "One", "/dev/zero"}, "too large");
}

TEST_F(CommandLine, NobodyListeningIsCannotConnect) {
    const auto port = std::to_string(reticle::test::unusedPort());
    expectOneErrorLine(runProgram({"list", "--port", port}), ExitStatus::CANNOT_CONNECT,
                       "cannot connect to 127.0.0.1:" + port + ": Connection refused: check ");
}

TEST_F(CommandLine, SilenceIsNoReply) {
    expectOneErrorLine(runAgainst([](FakePeer& peer) { peer.waitForClose(); }, "1"),
                       ExitStatus::NO_REPLY, " within 1 s: check ");
}

TEST_F(CommandLine, AConnectionClosedWithoutReplyIsNoReply) {
    expectOneErrorLine(runAgainst([](FakePeer& peer) { peer.receiveRequest(); }),
                       ExitStatus::NO_REPLY, "closed the connection without a reply: check ");
}

TEST_F(CommandLine, AForeignServerIsAMalformedReply) {
    expectOneErrorLine(runAgainst(answering("HTTP/1.1 400 Bad Request\r\n\r\n")),
                       ExitStatus::MALFORMED_REPLY, ": check ");
}

TEST_F(CommandLine, ABodyThatIsNotJsonIsAMalformedReply) {
    expectOneErrorLine(runAgainst(answering(encodeFrame("oops"))), ExitStatus::MALFORMED_REPLY,
                       "(not JSON): check ");
}

TEST_F(CommandLine, AReplyOfAWrongShapeIsAMalformedReply) {
    expectOneErrorLine(runAgainst(answering(encodeFrame(R"({"result":"OK","reticles":7})"))),
                       ExitStatus::MALFORMED_REPLY, "\"reticles\" is not a list");
}

TEST_F(CommandLine, OutputThatCannotBeWrittenIsReported) {
    const FakeService service(answering(encodeFrame(ONE_RETICLE)));
    std::istringstream in;
    std::ofstream full("/dev/full");
    std::ostringstream err;
    const ExitStatus status =
        run({"list", "--port", std::to_string(service.port())}, in, full, err);
    expectOneErrorLine({status, "", err.str()}, ExitStatus::USAGE, "cannot write the output");
}

TEST_F(CommandLine, AFailureAsJsonIsOneDocument) {
    const auto port = std::to_string(reticle::test::unusedPort());
    EXPECT_EQ(runProgram({"--json", "list", "--port", port}).out,
              R"({"error":{"exitStatus":3,"kind":"CANNOT_CONNECT","message":)"
              R"("cannot connect to 127.0.0.1:)" +
                  port +
                  R"(: Connection refused: check that the reticle service runs there, and the )"
                  "host and port\"}}\n");
    const Exchange missing = exchange({"show", "5", "--json"});
    EXPECT_TRUE(missing.outcome.out.starts_with(
        R"({"error":{"exitStatus":1,"kind":"REFUSED","message":"the device lists no)"));
    const Outcome unknown = runProgram({"--json", "lst"});
    expectOneErrorLine(unknown, ExitStatus::USAGE, "lst");
    EXPECT_EQ(unknown.out,
              R"({"error":{"exitStatus":2,"kind":"USAGE","message":)"
              R"("unknown command or option lst (did you mean list?): see reticlectl --help"}})"
              "\n");
}

TEST_F(CommandLine, ColoursAreAutoAlwaysOrNever) {
    const auto isColored = [](const Exchange& run) {
        return run.outcome.out.find('\x1B') != std::string::npos;
    };
    EXPECT_FALSE(isColored(exchange({"list"})));
    EXPECT_TRUE(isColored(exchange({"list", "--color", "always"})));
    EXPECT_FALSE(isColored(exchange({"list", "--color=never"})));
    EXPECT_FALSE(isColored(exchange({"list", "--color", "always", "--json"})));
    expectUsageError({"list", "--color", "sometimes"}, "--color");
}

TEST_F(CommandLine, PingSendsNothingButTheListRequest) {
    const Exchange run = exchange({"ping"});
    EXPECT_EQ(run.request, LIST_REQUEST);
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_EQ(run.outcome.err, "");
}

TEST_F(CommandLine, PingTakesARefusalForAnAnswer) {
    const Exchange run = exchange({"ping"}, R"({"result":"UNKNOWN_ACTION"})");
    EXPECT_EQ(run.outcome.status, ExitStatus::DONE);
    EXPECT_NE(run.outcome.out.find("27 bytes from 127.0.0.1:"), std::string::npos)
        << run.outcome.out;
}

TEST_F(CommandLine, PingTellsAForeignServer) {
    const Exchange run = exchange({"ping"}, "oops");
    expectOneErrorLine(run.outcome, ExitStatus::MALFORMED_REPLY, "seq=1: the reply is not one");
    EXPECT_NE(run.outcome.out.find("1 requests transmitted, 0 received, 100% loss"),
              std::string::npos);
}

TEST_F(CommandLine, PingConnectsAnewAfterALoss) {
    int connections = 0;
    {
        const FakeService service([&connections](FakePeer& peer) {
            peer.receiveRequest();
            peer.send(++connections == 1 ? "" : encodeFrame(ONE_RETICLE));
        });
        const Outcome ping = runProgram({"--port", std::to_string(service.port()), "ping",
                                         "--count", "2", "--interval", "0.001"});
        expectOneErrorLine(ping, ExitStatus::DONE, "seq=1: ");
    }
    EXPECT_EQ(connections, 2);
}

TEST_F(CommandLine, AWatchWhoseOutputCannotBeWrittenEnds) {
    const FakeService service(answering(encodeFrame(ONE_RETICLE)));
    std::istringstream in;
    std::ofstream full("/dev/full");
    std::ostringstream err;
    const ExitStatus status =
        run({"list", "--watch", "0.001", "--port", std::to_string(service.port())}, in, full, err);
    expectOneErrorLine({status, "", err.str()}, ExitStatus::USAGE, "cannot write the output");
}

TEST_F(CommandLine, HelpAndVersionAreDone) {
    const Outcome help = runProgram({"--help"});
    EXPECT_EQ(help.status, ExitStatus::DONE);
    for (const char* word :
         {"list", "activate", "add", "update", "delete", "show", "gallery", "--host", "--port",
          "--timeout SECONDS=10 ", "--json", "Exit status: 0 done, 1 refused"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    EXPECT_EQ(runProgram({"add", "--help"}).status, ExitStatus::DONE);
    const Outcome version = runProgram({"--version"});
    EXPECT_EQ(version.status, ExitStatus::DONE);
    EXPECT_EQ(version.out, "reticlectl " RETICLED_VERSION "\n");
}

}  // namespace

}  // namespace reticlectl
