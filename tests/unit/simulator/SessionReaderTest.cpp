#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "simulator/session/SessionReader.h"
#include "simulator/session/SessionWriter.h"

namespace sim {
namespace {

Session read(const std::string& text) {
    std::istringstream input(text);
    return SessionReader(input).read();
}

std::string complaintAbout(const std::string& steps) {
    try {
        (void)read("rtos-sim session 1\n" + steps);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "none";
}

/// As SessionWriter writes it.
const std::string WHOLE = R"(rtos-sim session 1
client sends 2 bytes
    {}
rtos receives 4 bytes
    [
     ]
file exists new_reticle_data0, 3 bytes, escaped
    a\r
    
file reticle/dot.svg, 0 bytes
file list.json, 2 bytes
    []
rtos waits 20 ms
rtos pauses 0 ms
rtos answers 1 bytes
    ?
rtos closes
rtos receives 1 bytes
    x
rtos answers nothing
rtos receives 1 bytes
    y
rtos resets
client sends 1 bytes
    7
)";

TEST(SessionReader, ReadsEveryStep) {
    const Session session = read(WHOLE);
    ASSERT_EQ(session.exchanges.size(), 3U);
    const Exchange& first = session.exchanges[0];
    EXPECT_EQ(first.line, 4U);
    EXPECT_EQ(first.request, "[\n ]");
    EXPECT_EQ(first.newData, (std::vector<SessionFile>{{"new_reticle_data0", "a\r\n"}}));
    EXPECT_EQ(first.files,
              (std::vector<SessionFile>{{"reticle/dot.svg", ""}, {"list.json", "[]"}}));
    EXPECT_EQ(first.answer.bytes, "?");
    EXPECT_EQ(first.answer.delay.count(), 20);
    ASSERT_TRUE(first.answer.gap);
    EXPECT_EQ(first.answer.gap->count(), 0);
    EXPECT_EQ(first.answer.end, Delivery::End::CLOSE);
    EXPECT_EQ(session.exchanges[1].answer.bytes, "");
    EXPECT_EQ(session.exchanges[1].answer.end, Delivery::End::KEEP_OPEN);
    EXPECT_EQ(session.exchanges[2].answer.bytes, "");
    EXPECT_EQ(session.exchanges[2].answer.end, Delivery::End::RESET);
    ASSERT_EQ(session.clientRequests.size(), 2U);
    EXPECT_EQ(session.clientRequests[0].text, "{}");
    EXPECT_EQ(session.clientRequests[0].exchangesBefore, 0U);
    EXPECT_EQ(session.clientRequests[1].exchangesBefore, 3U);
}

TEST(SessionReader, ReadsWhatTheWriterWrites) {
    std::ostringstream output;
    SessionWriter(output).write(read(WHOLE));
    EXPECT_EQ(output.str(), WHOLE);
}

TEST(SessionReader, ReadsWhatPeopleWriteWithoutSizes) {
    const Session session =
        read("# mine\n\nrtos-sim session 1\nrtos receives\n    x\nrtos answers\n    y\n");
    ASSERT_EQ(session.exchanges.size(), 1U);
    EXPECT_EQ(session.exchanges[0].answer.bytes, "y");
}

TEST(SessionReader, RequiresItsHead) {
    for (const std::string text : {"", "rtos-sim session 2\n", "rtos receives\n    x\n"}) {
        EXPECT_THROW((void)read(text), std::runtime_error) << text;
    }
}

TEST(SessionReader, NamesTheLineOfAMistake) {
    const std::vector<std::pair<std::string, std::string>> mistakes = {
        {"rtos forgets\n", "line 2: \"rtos forgets\" is no step of a session"},
        {"rtos receives\n", "line 2: \"rtos receives\" has no text"},
        {"rtos receives\n    x\n", "line 2: the request has no answer"},
        {"rtos receives\n    x\nrtos receives\n    x\n",
         "line 4: the request before has no answer"},
        {"rtos receives\n    x\nclient sends\n    x\n", "line 4: the request before has no answer"},
        {"rtos answers\n    x\n", "line 2: no request comes before this"},
        {"rtos closes\n", "line 2: no request comes before this"},
        {"file a\n    x\n", "line 2: no request comes before this"},
        {"rtos receives\n    x\nrtos answers\n", "line 4: \"rtos answers\" has no text"},
        {"rtos receives\n    x\nrtos answers nothing\n    x\n",
         "line 4: \"rtos answers nothing\" takes no text"},
        {"rtos receives\n    x\nfile ../a\n    x\n",
         "line 4: '../a' is no file name inside the root"},
        {"rtos receives\n    x\nfile exists /a\n    x\n",
         "line 4: '/a' is no file name inside the root"},
        {"rtos receives\n    x\nrtos waits long\n", "line 4: 'long' is no time, such as 100 ms"},
        {"rtos receives\n    x\nrtos waits -1 ms\n", "line 4: '-1 ms' is no time, such as 100 ms"},
        {"rtos receives 2 bytes\n    x\n", "line 2: the text has 1 bytes, not 2"}};
    for (const auto& [steps, complaint] : mistakes) {
        EXPECT_EQ(complaintAbout(steps), complaint);
    }
}

}  // namespace
}  // namespace sim
