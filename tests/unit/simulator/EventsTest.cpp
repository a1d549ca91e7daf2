// Events as programs and as people get them.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "simulator/events/EventJson.h"
#include "simulator/events/EventPrinter.h"
#include "simulator/events/EventStream.h"
#include "simulator/events/EventText.h"
#include "simulator/events/ObservedDevice.h"

namespace sim {
namespace {

using std::chrono::milliseconds;

constexpr const char* ADD = "[{\"msg_id\":78, \"param2_name\":\"A\",\n\t\"param3_data\":\"a:/n\"}]";
const ReticleList RETICLES{{0, "Dot \x01", "user-0", "red", true, false},
                           {4, "Kreis Ä", "factory-a.svg", "#fff", false, true}};

Event atTenPast(Event::What what) {
    return {17, std::chrono::system_clock::time_point(milliseconds(1'795'306'200'007)),
            std::move(what)};
}

std::string jsonOf(Event::What what) {
    return eventJson(atTenPast(std::move(what)));
}

/// What stands behind time and number.
std::string textOf(Event::What what) {
    const std::string head = "2026-11-22T00:10:00.007Z #17 ";
    const std::string text = eventText(atTenPast(std::move(what)));
    EXPECT_EQ(text.substr(0, head.size()), head);
    return text.substr(std::min(text.size(), head.size()));
}

Delivery answer(const std::string& bytes) {
    Delivery delivery;
    delivery.bytes = bytes;
    return delivery;
}

/// All that can go wrong with one answer.
Answered spoiled() {
    Answered answered{3, ADD, answer("}\xff\x1b"), milliseconds(307)};
    answered.delivery.delay = milliseconds(300);
    answered.delivery.gap = milliseconds(9);
    answered.delivery.end = Delivery::End::RESET;
    answered.delivery.retVal = 6;
    answered.delivery.reason = "full";
    answered.delivery.faults = {"garbage", "delay:300"};
    return answered;
}

TEST(EventJson, TellsOfExchanges) {
    EXPECT_EQ(
        jsonOf(Received{3, ADD}),
        R"({"event":17,"exchange":3,"kind":"received","message":"ADD_RETICLE",)"
        R"("request":"[{\"msg_id\":78, \"param2_name\":\"A\",\n\t\"param3_data\":\"a:/n\"}]",)"
        R"("time":"2026-11-22T00:10:00.007Z"})");
    EXPECT_EQ(jsonOf(Answered{3, "?", answer("[]"), milliseconds(2)}),
              R"({"answer":"[]","event":17,"exchange":3,"kind":"answered","ms":2,)"
              R"("time":"2026-11-22T00:10:00.007Z"})");
    EXPECT_EQ(jsonOf(spoiled()),
              R"({"answer":"}\\xff\\x1b","event":17,"exchange":3,"faults":["garbage","delay:300"],)"
              R"("kind":"spoiled","message":"ADD_RETICLE","ms":307,"reason":"full","ret_val":6,)"
              R"("time":"2026-11-22T00:10:00.007Z"})");
}

TEST(EventJson, TellsOfTheState) {
    EXPECT_EQ(jsonOf(FileChange{"reticle/user-0", 5}),
              R"({"bytes":5,"event":17,"file":"reticle/user-0","kind":"written",)"
              R"("time":"2026-11-22T00:10:00.007Z"})");
    EXPECT_EQ(jsonOf(FileChange{"a\x01", {}}),
              R"({"event":17,"file":"a\\x01","kind":"removed","time":"2026-11-22T00:10:00.007Z"})");
    EXPECT_EQ(jsonOf(Changed{RETICLES, true}),
              R"({"by":"user","event":17,"kind":"changed","reticles":[)"
              R"({"active":false,"color":"red","deletable":true,"file":"reticle/user-0","index":0,)"
              R"("name":"Dot \\x01"},)"
              R"({"active":true,"color":"#fff","deletable":false,"file":"reticle/factory-a.svg",)"
              R"("index":4,"name":"Kreis Ä"}],"time":"2026-11-22T00:10:00.007Z"})");
    EXPECT_EQ(jsonOf(FaultsArmed{{"silent@3"}}),
              R"({"event":17,"faults":["silent@3"],"kind":"faults",)"
              R"("time":"2026-11-22T00:10:00.007Z"})");
    EXPECT_EQ(jsonOf(PowerSwitched{false}),
              R"({"event":17,"kind":"down","time":"2026-11-22T00:10:00.007Z"})");
    EXPECT_EQ(jsonOf(PowerSwitched{true}),
              R"({"event":17,"kind":"up","time":"2026-11-22T00:10:00.007Z"})");
}

TEST(EventJson, CutsLongTextsBetweenCharacters) {
    std::string request(1998, 'x');
    request += "€ and more";
    EXPECT_NE(jsonOf(Received{1, request}).find("xx... (2010 bytes)\""), std::string::npos);
    request.insert(0, "\xff");
    EXPECT_NE(jsonOf(Received{1, request}).find("xx\\\\xe2... (2011 bytes)\""), std::string::npos);
}

TEST(EventText, TellsOfExchangesOnOneLine) {
    EXPECT_EQ(
        textOf(Received{3, ADD}),
        R"(exchange 3: received ADD_RETICLE: [{"msg_id":78,"param2_name":"A","param3_data":"a:/n"}])");
    EXPECT_EQ(textOf(Received{3, "h\n\t\x1b[31m\xff\\"}),
              R"(exchange 3: received no message: h\n\t\x1b[31m\xff\\)");
    EXPECT_EQ(textOf(Answered{3, ADD, answer("[]"), milliseconds(2)}), "exchange 3: answered: []");
    EXPECT_EQ(
        textOf(spoiled()),
        R"(exchange 3: spoiled by garbage, delay:300: }\xff\x1b, after 300 ms, in two segments )"
        "9 ms apart, then RST; refused, full");
    Answered silent{3, ADD, answer(""), milliseconds(0)};
    silent.delivery.faults = {"close"};
    silent.delivery.end = Delivery::End::CLOSE;
    EXPECT_EQ(textOf(silent), "exchange 3: spoiled by close: nothing, then FIN");
}

TEST(EventText, TellsOfTheState) {
    EXPECT_EQ(textOf(FileChange{"reticle/user-0", 5}), "written reticle/user-0, 5 bytes");
    EXPECT_EQ(textOf(FileChange{"a", {}}), "removed a");
    EXPECT_EQ(textOf(Changed{RETICLES, true}), "changed by the user: 2 reticles, active 4");
    EXPECT_EQ(textOf(Changed{{}, false}), "changed by the service: 0 reticles, active none");
    EXPECT_EQ(textOf(FaultsArmed{{"silent@3", "long"}}), "faults armed: silent@3, long");
    EXPECT_EQ(textOf(FaultsArmed{}), "faults armed: none");
    EXPECT_EQ(textOf(PowerSwitched{false}), "down: no connection is taken");
    EXPECT_EQ(textOf(PowerSwitched{true}), "up: connections are taken");
}

TEST(EventPrinter, PrintsOnlyWhatMakesNoSenseUnlessVerbose) {
    std::ostringstream output;
    EventPrinter printer(output, false);
    printer.print(atTenPast(Received{3, "?"}));
    printer.print(atTenPast(spoiled()));
    EXPECT_EQ(output.str(), "");
    Answered senseless{3, "?", answer("[]"), milliseconds(0)};
    senseless.delivery.retVal = 8;
    printer.print(atTenPast(senseless));
    EXPECT_EQ(output.str(), "");
    senseless.delivery.reason = "not JSON";
    printer.print(atTenPast(senseless));
    EXPECT_EQ(output.str(),
              "rtos-sim: 2026-11-22T00:10:00.007Z #17 exchange 3: answered: []; refused, not JSON; "
              "the request: ?\n");
}

TEST(ObservedDevice, PublishesEachExchangeBeforeAndAfterIt) {
    EventStream events;
    std::vector<std::string> told;
    events.subscribe([&told](const Event& event) { told.push_back(eventText(event).substr(25)); });
    ObservedDevice device(
        [&events](const std::string& request) {
            events.publish(FileChange{"list", 1});
            return answer(request + "!");
        },
        events);
    EXPECT_EQ(device.exchange("a").bytes, "a!");
    EXPECT_EQ(device.exchange("b").bytes, "b!");
    EXPECT_EQ(told, (std::vector<std::string>{
                        "#1 exchange 1: received no message: a", "#2 written list, 1 bytes",
                        "#3 exchange 1: answered: a!", "#4 exchange 2: received no message: b",
                        "#5 written list, 1 bytes", "#6 exchange 2: answered: b!"}));
}

}  // namespace
}  // namespace sim
