#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <regex>
#include <set>
#include <string>

#include "tests/browser/HostilePicture.h"
#include "tests/browser/LiveChromium.h"
#include "tests/support/Connection.h"
#include "tests/support/Patience.h"
#include "tests/support/Sockets.h"
#include "tests/system/Daemon.h"
#include "tests/system/Process.h"
#include "tests/system/Reticlectl.h"
#include "tests/system/Simulator.h"
#include "tests/system/SystemTest.h"

namespace {

constexpr auto BENCH_PAGE = "http://127.0.0.1:8090/";
constexpr auto IS_LIVE = "document.getElementById('link').dataset.state === 'live'";

/// Where hostile names, colours and data refer to.
constexpr std::uint16_t ELSEWHERE_PORT = 8091;
constexpr auto HOSTILE_NAMES = R"json([{"reticles":[
{"index":0,"name":"\"><img src=//127.0.0.1:8091/x onerror=\"document.title='owned'\">","data":"hostile.svg","userColor":"red","isDeletable":true,"isActive":true},
{"index":1,"name":"<script>document.title='owned'</script>","data":"colour.svg","userColor":"url(/picture/0)\" onload=\"document.title='owned'","isDeletable":true,"isActive":false},
{"index":2,"name":"</title><svg onload=\"document.title='owned'\">","data":"text","userColor":"red;background:url(//127.0.0.1:8091)","isDeletable":true,"isActive":false}]}])json";

std::string textOf(const std::string& selector) {
    return "document.querySelector('" + selector + "').textContent";
}

/// Simulator, service, and a reader who looks at the page.
class BenchPageTest : public SystemTest {
protected:
    void start(Scheme scheme = Scheme::LIGHT) {
        simulator.emplace(std::vector<std::string>{"--web", "8090"});
        service.emplace();
        service->waitUntilListening();
        browser.emplace(scheme);
        browser->open(BENCH_PAGE);
        ASSERT_TRUE(browser->sees(IS_LIVE));
    }

    /// Waits until the eyepiece shows the colour.
    [[nodiscard]] bool eyepieceShows(Rgb colour) {
        return eventually(
            [this, colour] { return browser->screenshot("#eyepiece").count(colour) > 0; });
    }

    std::optional<Simulator> simulator;
    std::optional<Daemon> service;
    std::optional<LiveChromium> browser;
};

TEST_F(BenchPageTest, ShowsWhatAClientDoes) {
    constexpr Rgb GREEN{0x00, 0xC8, 0x53};
    start();
    EXPECT_TRUE(browser->sees(textOf("#active-name") + " === 'Duplex'"));
    EXPECT_EQ(browser->screenshot("#eyepiece").count(GREEN), 0U);
    ASSERT_EQ(Reticlectl::run({"activate", "2"}).status, Reticlectl::DONE);
    EXPECT_TRUE(browser->sees(textOf("#active-name") + " === 'MOA Grid'"));
    EXPECT_TRUE(browser->sees(textOf(".reticle.active h3") + " === 'MOA Grid'"));
    EXPECT_TRUE(eyepieceShows(GREEN));
    // The list that follows each change is the latest exchange.
    EXPECT_TRUE(browser->sees("document.querySelectorAll('.exchange.good').length === 2"));
    EXPECT_EQ(browser->evaluate(textOf(".exchange:first-child b")), "GET_RETICLES");
    EXPECT_EQ(browser->evaluate(textOf(".exchange:first-child pre:nth-of-type(2)")),
              R"([{"param":"reticle_list.json","ret_val":0}])");
    EXPECT_EQ(browser->evaluate(textOf(".exchange:nth-child(2) b")), "SET_ACTIVE_RETICLE");
    EXPECT_EQ(browser->evaluate(textOf(".exchange:nth-child(2) .files") +
                                ".startsWith('wrote reticle_list.json, ')"),
              "true");
}

TEST_F(BenchPageTest, FaultArmedByAClickSpoilsTheNextExchange) {
    start();
    static_cast<void>(browser->evaluate(
        "document.getElementById('fault-kind').value = 'refuse';"
        "document.getElementById('fault-kind').dispatchEvent(new Event('change'))"));
    browser->click("#fault-form [type=submit]");
    EXPECT_TRUE(browser->sees(textOf("#armed") + ".startsWith('refuse:5@')"));
    // In the place of another of its kind.
    static_cast<void>(browser->evaluate("document.getElementById('fault-argument').value = '6'"));
    browser->click("#fault-form [type=submit]");
    EXPECT_TRUE(browser->sees(textOf(".note:first-child") + ".includes('Armed: refuse:6@')"));

    EXPECT_EQ(Reticlectl::run({"list"}).status, Reticlectl::REFUSED);
    EXPECT_TRUE(browser->sees(textOf(".exchange.spoiled .tag") + ".startsWith('refuse:6')"));
    EXPECT_EQ(Reticlectl::run({"list"}).status, Reticlectl::DONE);
    EXPECT_TRUE(browser->sees("document.querySelectorAll('.exchange.good').length === 1"));
}

TEST_F(BenchPageTest, TheDevicesUserActsFromThePage) {
    start();
    ASSERT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 8"));
    browser->click(".reticle:nth-child(8) .buttons button:last-child");
    static_cast<void>(
        browser->evaluate("document.getElementById('edit-name').value = 'Mine'; "
                          "document.getElementById('edit-colour').value = '#2f9bff'"));
    browser->click("#edit-form [value=save]");
    EXPECT_TRUE(browser->sees(textOf(".reticle:nth-child(8) h3") + " === 'Mine'"));
    EXPECT_TRUE(browser->sees(textOf(".reticle:nth-child(8) .colour") + " === '#2f9bff'"));
    browser->click(".reticle:nth-child(8) .buttons button:last-child");
    browser->click("#delete");
    EXPECT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 7"));
    browser->click("#reset");
    browser->click("#resetting-form [value=reset]");
    EXPECT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 8"));
    EXPECT_EQ(Reticlectl::run({"list"}).table().find("Mine"), std::string::npos);
}

TEST_F(BenchPageTest, ADeviceThatRestartsGoesAwayAndComesBack) {
    start();
    static_cast<void>(
        browser->evaluate("window.states = [];"
                          "new MutationObserver(() => states.push(document.getElementById('link')"
                          ".dataset.state)).observe(document.getElementById('link'),"
                          "{attributes: true})"));
    browser->click("#restart-form [type=submit]");
    EXPECT_TRUE(browser->sees("states.includes('down') && " + std::string(IS_LIVE)));
}

TEST_F(BenchPageTest, APageWhoseSimulatorIsGoneSaysSoAndGoesOnWithTheNext) {
    start();
    simulator->kill();
    EXPECT_TRUE(browser->sees("document.getElementById('link').dataset.state === 'gone'"));
    EXPECT_EQ(browser->evaluate(textOf("#link")), "No simulator, or too many pages – trying again");
    simulator.emplace(std::vector<std::string>{"--web", "8090"});
    EXPECT_TRUE(browser->sees(IS_LIVE));
    ASSERT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 8"));
    // With the new one's token.
    browser->click(".reticle:nth-child(4) .buttons button");
    EXPECT_TRUE(browser->sees(textOf("#active-name") + " === 'BDC 7.62 mm'"));
}

TEST_F(BenchPageTest, HostileNamesColoursAndDataDoNothing) {
    // It is quiet as long as nobody connects.
    const Connection elsewhere(sockets::listenOn(ELSEWHERE_PORT));
    flash.write("reticle/hostile.svg", std::regex_replace(HOSTILE, std::regex("file:///tmp/FL0"),
                                                          "http://127.0.0.1:8091"));
    flash.write("reticle/colour.svg",
                R"(<svg viewBox="0 0 9 9"><path fill="user_color" d="M0 0h9v9z"/></svg>)");
    flash.write("reticle/text", "<script>document.title='owned'</script>");
    flash.write("reticle_list.json", HOSTILE_NAMES);
    start();
    EXPECT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 3"));
    EXPECT_EQ(browser->evaluate(textOf("#active-name")),
              R"("><img src=//127.0.0.1:8091/x onerror="document.title='owned'">)");
    EXPECT_EQ(browser->evaluate(textOf(".reticle:nth-child(2) h3")),
              "<script>document.title='owned'</script>");
    EXPECT_TRUE(browser->sees(textOf(".reticle:nth-child(3) .ground p") +
                              " === 'Its data are no picture.'"));
    EXPECT_TRUE(eyepieceShows(HARMLESS_COLOUR));
    const Screenshot page = browser->screenshot("body");
    EXPECT_EQ(page.count(SCRIPT_COLOUR), 0U);
    EXPECT_EQ(browser->evaluate("document.title"), "Simulated device");
    EXPECT_EQ(browser->evaluate("document.scripts.length"), "1");

    // By itself, too, where a browser would run what is in it.
    browser->open(std::string(BENCH_PAGE) + "picture/0");
    EXPECT_TRUE(
        browser->sees("document.getElementById('run') !== null && "
                      "document.readyState === 'complete'"));
    for (const char* part : {"run", "loaded"}) {
        EXPECT_EQ(browser->evaluate(std::string("document.getElementById('") + part +
                                    "').getAttribute('fill')"),
                  "#02fe01");
    }
    EXPECT_TRUE(elsewhere.isQuiet());
}

TEST_F(BenchPageTest, FieldsWithoutBoundsGetNoScaleAndHoldNothingUp) {
    int index = 0;
    std::string list;
    for (const char* field : {"0 0 10 10", "0 0 1 1e9", "1e20 0 1 1", "1e308 0 1e308 1"}) {
        const std::string number = std::to_string(index);
        flash.write("reticle/" + number, "<svg viewBox=\"" + std::string(field) + "\"/>");
        list += (index > 0 ? "," : "") + (R"({"index":)" + number) + R"(,"name":"F)" + number +
                R"(","data":")" + number + R"(","userColor":"red","isDeletable":true,"isActive":)" +
                (index == 0 ? "true}" : "false}");
        ++index;
    }
    flash.write("reticle_list.json", R"([{"reticles":[)" + list + "]}]");
    start();
    EXPECT_TRUE(browser->sees("document.querySelectorAll('#scale path').length > 0"));
    while (--index > 0) {
        const std::string number = std::to_string(index);
        ASSERT_EQ(browser->evaluate("scaleOf(device.reticles[" + number + "]).then(String)"),
                  "null");
        ASSERT_EQ(Reticlectl::run({"activate", number}).status, Reticlectl::DONE);
        ASSERT_TRUE(browser->sees(textOf("#active-name") + " === 'F" + number + "'"));
        EXPECT_EQ(browser->evaluate("document.querySelectorAll('#scale path').length"), "0");
    }
}

TEST_F(BenchPageTest, APictureIsThatOfTheDataThatNowHaveItsPlace) {
    start();
    browser->resize(1000, 3000);
    ASSERT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 8"));
    const auto add = [](const std::string& colour) {
        return R"(command(['add', 'Mine', '<svg viewBox="0 0 9 9"><path fill=")" + colour +
               R"(" d="M0 0h9v9H0z"/></svg>']))";
    };
    const auto cardShows = [this](Rgb colour) {
        return eventually([this, colour] {
            return browser->screenshot(".reticle:nth-child(9) .ground").count(colour) > 0;
        });
    };
    ASSERT_EQ(browser->evaluate(add("#fe0102")), "true");
    ASSERT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 9"));
    EXPECT_TRUE(cardShows(SCRIPT_COLOUR));
    // The index and the file of the one that goes are those of the one that comes.
    ASSERT_EQ(browser->evaluate("command(['delete', '8']).then(() => " + add("#0102fe") + ')'),
              "true");
    EXPECT_TRUE(cardShows(LOADED_COLOUR));
}

TEST_F(BenchPageTest, AnEditorKeepsTheNewlinesOfANameThatNobodyEdits) {
    start();
    ASSERT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 8"));
    ASSERT_EQ(browser->evaluate(R"(command(['rename', '1', 'Two\nlines']))"), "true");
    ASSERT_TRUE(browser->sees(R"(device.reticles[1].name === 'Two\nlines')"));
    browser->click(".reticle:nth-child(2) .buttons button:last-child");
    static_cast<void>(
        browser->evaluate("document.getElementById('edit-colour').value = '#2f9bff'"));
    browser->click("#edit-form [value=save]");
    ASSERT_TRUE(browser->sees("device.reticles[1].color === '#2f9bff'"));
    EXPECT_EQ(browser->evaluate(R"(device.reticles[1].name === 'Two\nlines')"), "true");
}

TEST_F(BenchPageTest, FitsATelephoneAndAWideScreen) {
    start();
    ASSERT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 8"));
    for (const int width : {360, 1000, 1920}) {
        browser->resize(width, 900);
        EXPECT_TRUE(browser->sees("innerWidth === " + std::to_string(width) +
                                  " && document.documentElement.scrollWidth <= innerWidth"))
            << width << ": " << browser->evaluate("document.documentElement.scrollWidth");
    }
}

TEST_F(BenchPageTest, EachGroundIsAnotherAndStaysChosen) {
    start();
    ASSERT_TRUE(browser->sees("!document.getElementById('active-picture').hidden"));
    constexpr Point BESIDE_THE_DRAWING{150, 170};
    std::set<std::string> middles;
    for (const std::string ground : {"day", "dusk", "night", "grey", "card"}) {
        browser->click("label." + ground);
        EXPECT_EQ(browser->evaluate("document.getElementById('eyepiece').dataset.ground"), ground);
        const Screenshot picture = browser->screenshot("#eyepiece");
        const Rgb colour = picture.at(BESIDE_THE_DRAWING);
        middles.insert(std::to_string(colour.red) + ',' + std::to_string(colour.green) + ',' +
                       std::to_string(colour.blue));
    }
    EXPECT_EQ(middles.size(), 5U);
    browser->open(BENCH_PAGE);
    EXPECT_TRUE(browser->sees("document.getElementById('eyepiece').dataset.ground === 'card'"));
}

TEST_F(BenchPageTest, TheCardMeasuresInMilliradiansAndMinutesOfAngle) {
    start();
    ASSERT_EQ(Reticlectl::run({"activate", "6"}).status, Reticlectl::DONE);
    browser->click("label.card");
    // One unit of this drawing is a milliradian: a number stands where it says.
    const std::string areRight =
        R"js(((name, size) => {
            const numbers = [...document.querySelectorAll('#scale text.' + name)]
                .filter((text) => !Number.isNaN(Number(text.textContent)));
            return numbers.length > 4 && numbers.every((text) =>
                Math.abs(Math.abs(text.getAttribute('x')) - text.textContent * size) < 1e-6);
        }))js";
    EXPECT_TRUE(browser->sees(areRight + "('mil', 1)"));
    EXPECT_TRUE(browser->sees(areRight + "('moa', Math.PI / 180 / 60 * 1000)"));
}

TEST_F(BenchPageTest, FollowsTheReadersSystem) {
    const std::string ground = "getComputedStyle(document.documentElement).backgroundColor";
    const std::string moves =
        "(() => { const item = document.createElement('li'); item.className = 'exchange fresh';"
        "document.getElementById('feed').append(item);"
        "return getComputedStyle(item).animationName !== 'none'; })()";
    start(Scheme::DARK);
    const std::string dark = browser->evaluate(ground);
    EXPECT_EQ(browser->evaluate("document.getElementById('eyepiece').dataset.ground"), "dusk");
    EXPECT_EQ(browser->evaluate(moves), "true");
    browser->emulate("prefers-color-scheme", "light");
    EXPECT_NE(browser->evaluate(ground), dark);
    browser->emulate("prefers-reduced-motion", "reduce");
    EXPECT_EQ(browser->evaluate(moves), "false");
}

TEST_F(BenchPageTest, WorksByKeyboard) {
    constexpr int TAB = 9;
    constexpr int ENTER = 13;
    constexpr int TABS_TO_THE_SECOND_CARD = 30;
    start();
    ASSERT_TRUE(browser->sees("document.querySelectorAll('.reticle').length === 8"));
    const std::string isThere =
        "document.activeElement === document.querySelector('.reticle:nth-child(2) button')";
    for (int tabs = 0; tabs < TABS_TO_THE_SECOND_CARD && browser->evaluate(isThere) != "true";
         ++tabs) {
        browser->press("Tab", TAB);
    }
    ASSERT_EQ(browser->evaluate(isThere), "true");
    browser->press("Enter", ENTER, "\r");
    EXPECT_TRUE(browser->sees(textOf("#active-name") + " === 'Mil-Dot'"));
}

TEST_F(BenchPageTest, FollowsTheDemoThatIsKept) {
    // The demo wants a storage of its own.
    std::filesystem::remove_all("/tmp/FL0");
    Process demo({PROJECT_SOURCE_DIRECTORY "/scripts/demo", "--keep"});
    ASSERT_TRUE(eventually([&demo] {
        return demo.standardOutput().find("Ctrl-C stops") != std::string::npos ||
               !demo.child().isAlive();
    })) << demo.standardOutput();
    const std::string output = demo.standardOutput();
    const std::size_t address = output.find("http://127.0.0.1:");
    ASSERT_NE(address, std::string::npos) << output << demo.standardError();
    browser.emplace();
    browser->open(output.substr(address, output.find('\n', address) - address));
    ASSERT_TRUE(browser->sees(IS_LIVE));
    ASSERT_EQ(Reticlectl::run({"activate", "2"}).status, Reticlectl::DONE);
    EXPECT_TRUE(browser->sees(textOf("#active-name") + " === 'MOA Grid'"));
    demo.child().kill(SIGINT);
    EXPECT_TRUE(demo.waitForEnd());
}

}  // namespace
