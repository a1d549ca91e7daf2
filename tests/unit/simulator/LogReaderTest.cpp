#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/log/LogReader.h"

namespace sim {
namespace {

using Kind = LogRecord::Kind;

std::vector<LogRecord> recordsOf(const std::string& log) {
    std::istringstream input(log);
    LogReader reader(input);
    std::vector<LogRecord> records;
    while (std::optional<LogRecord> record = reader.next()) {
        records.push_back(*std::move(record));
    }
    return records;
}

void expectRecord(const LogRecord& record, Kind kind, std::size_t line, const std::string& text) {
    EXPECT_EQ(record.kind, kind);
    EXPECT_EQ(record.line, line);
    EXPECT_EQ(record.text, text);
}

TEST(LogReader, ReadsWhatConcernsARequest) {
    const auto records = recordsOf(R"(total cnt = 32
json is true, length = 29
PacketsHandler::_handlerRoutine, json req: {"a":
 "}"}
buildmsg: {"a":
 "}"}
handleJsReq, rtos request: [
	{}
]
send_and_get: recv json: [{"ret_val":0}]
json value: 0
handleJsReq: rtos response: [{"ret_val":0}]
_getReticleData: reticle file path: /tmp/FL0/reticle/a b
handleJsReq, response: {
	"result" : "OK"
}
responseThread: msg to send = {
	"result" : "OK"
}
_handlerRoutine, exception: why
)");
    ASSERT_EQ(records.size(), 6U);
    expectRecord(records[0], Kind::CLIENT_REQUEST, 3, "{\"a\":\n \"}\"}");
    expectRecord(records[1], Kind::RTOS_REQUEST, 7, "[\n\t{}\n]");
    expectRecord(records[2], Kind::RTOS_ANSWER, 10, R"([{"ret_val":0}])");
    expectRecord(records[3], Kind::RETICLE_FILE, 13, "/tmp/FL0/reticle/a b");
    expectRecord(records[4], Kind::REPLY, 14, "{\n\t\"result\" : \"OK\"\n}");
    expectRecord(records[5], Kind::FAILURE, 20, "why");
}

TEST(LogReader, KeepsLinesOfTheErrorStreamOutOfATextAndGivesThemAfterIt) {
    const auto records = recordsOf(R"(handleJsReq, response: {
json value: 0
	"result" :
Broken pipe: Broken pipe
Connection reset by peer: Connection reset by peer
_handlerRoutine, exception: why
 "OK"
}
)");
    ASSERT_EQ(records.size(), 3U);
    expectRecord(records[0], Kind::REPLY, 1, "{\n\t\"result\" :\n \"OK\"\n}");
    expectRecord(records[1], Kind::RESET_LINK, 5, "");
    expectRecord(records[2], Kind::FAILURE, 6, "why");
}

TEST(LogReader, LeavesOutTextsThatBreakOff) {
    const auto records = recordsOf(R"("result" : "the tail of a reply that was cut"
}
handleJsReq, response: {
	"result" :
send_and_get: recv json: 5
handleJsReq, response: {
)");
    ASSERT_EQ(records.size(), 1U);
    expectRecord(records[0], Kind::RTOS_ANSWER, 5, "5");
}

TEST(LogReader, RefusesTextsThatWereCut) {
    for (const char* log : {"handleJsReq, response: {\n\t\"res ... (43 bytes)\n",
                            "total cnt = 32\nhandleJsReq, response:  ... (43 bytes)\n"}) {
        try {
            static_cast<void>(recordsOf(log));
            ADD_FAILURE() << log;
        } catch (const std::runtime_error& failure) {
            EXPECT_STREQ(failure.what(),
                         "line 2 is cut: a session needs a log written without --log-bytes");
        }
    }
}

TEST(LogReader, TakesTextsForWholeThatOnlyLookCut) {
    EXPECT_EQ(recordsOf("send_and_get: recv json: [\" ... (29 bytes)\"]\n"
                        "_handlerRoutine, exception: ... (x bytes)\n")
                  .size(),
              2U);
}

TEST(LogReader, ReadsJournals) {
    const std::string prefix = "Nov  1 11:22:32 sight reticled-foreground[1234]: ";
    const auto records = recordsOf(prefix + "handleJsReq, response: {\n" + prefix +
                                   "\t\"result\" : \"OK\"\n" + prefix + "}\n");
    ASSERT_EQ(records.size(), 1U);
    expectRecord(records[0], Kind::REPLY, 1, "{\n\t\"result\" : \"OK\"\n}");
}

}  // namespace
}  // namespace sim
