#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>

#include "client/FrameFormat.h"
#include "reticle-client/ReticleClient.h"
#include "tests/unit/client/FakeService.h"

namespace reticle {

namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;
using test::answering;
using test::FakePeer;
using test::FakeService;

constexpr const char* HOST = "127.0.0.1";
constexpr const char* EMPTY_LIST = R"({"result":"OK","reticles":null})";
constexpr const char* ONE_RETICLE =
    R"({"result":"OK","reticles":[)"
    R"({"index":4,"name":"Dot","data":"<svg/>","isDeletable":true,"isActive":true}]})";

/// The request that `call` sends.
template <class Call>
std::string requestOf(Call call) {
    std::vector<std::string> requests;
    {
        const FakeService service(answering(encodeFrame(EMPTY_LIST), &requests));
        ReticleClient client(HOST, service.port(), 10s);
        call(client);
    }
    return requests.at(0);
}

TEST(ReticleClient, SendsEachCommandOnce) {
    EXPECT_EQ(requestOf([](ReticleClient& client) { client.list(); }),
              R"({"action":"RETICLES_GET_ALL"})");
    EXPECT_EQ(requestOf([](ReticleClient& client) { client.activate(1); }),
              R"({"action":"RETICLE_SET_ACTIVE","index":1})");
    EXPECT_EQ(requestOf([](ReticleClient& client) {
                  client.add({{"a", "b"}});
              }),
              R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"b","name":"a"}]})");
    EXPECT_EQ(
        requestOf([](ReticleClient& client) { client.update(7, "a", "b"); }),
        R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"b","index":7,"name":"a"}]})");
    EXPECT_EQ(requestOf([](ReticleClient& client) { client.remove({2}); }),
              R"({"action":"RETICLES_DELETE","indices":[2]})");
}

/// A service that refuses the third request, and what it was asked for.
FakeService::Script refusingTheThird(std::vector<std::string>& requests) {
    return [&requests](FakePeer& peer) {
        for (std::string request; !(request = peer.receiveRequest()).empty();) {
            requests.push_back(request);
            constexpr std::size_t THIRD = 3;
            peer.send(encodeFrame(requests.size() == THIRD
                                      ? R"({"result":"RETICLES_COUNT_OUT_OF_BOUNDS"})"
                                      : ONE_RETICLE));
        }
    };
}

TEST(ReticleClient, ARefusalInTheMiddleTellsHowFarItCameAndWhatTheListIsNow) {
    std::vector<std::string> requests;
    {
        const FakeService service(refusingTheThird(requests));
        ReticleClient client(HOST, service.port(), 10s);
        try {
            client.add({{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}});
            FAIL();
        } catch (const Refused& refusal) {
            EXPECT_EQ(refusal.doneCount(), 2U);
            ASSERT_NE(refusal.list(), nullptr);
            EXPECT_EQ(refusal.list()->json, ONE_RETICLE);
        }
    }
    EXPECT_EQ(requests,
              (std::vector<std::string>{
                  R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"1","name":"a"}]})",
                  R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"2","name":"b"}]})",
                  R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":"3","name":"c"}]})",
                  R"({"action":"RETICLES_GET_ALL"})"}));
}

TEST(ReticleClient, ARefusalInTheMiddleOfADeletionTellsTheSame) {
    std::vector<std::string> requests;
    const FakeService service(refusingTheThird(requests));
    ReticleClient client(HOST, service.port(), 10s);
    try {
        client.remove({8, 7, 8});
        FAIL();
    } catch (const Refused& refusal) {
        EXPECT_EQ(refusal.doneCount(), 2U);
        EXPECT_NE(refusal.list(), nullptr);
    }
}

TEST(ReticleClient, SilenceInTheMiddleTellsHowFarItCameAndThatTheNextMayBeDone) {
    const FakeService service([](FakePeer& peer) {
        peer.receiveRequest();
        peer.send(encodeFrame(EMPTY_LIST));
        peer.waitForClose();
    });
    ReticleClient client(HOST, service.port(), 1s);
    try {
        client.remove({8, 7, 6});
        FAIL();
    } catch (const NoReply& error) {
        EXPECT_EQ(error.doneCount(), 1U);
        EXPECT_TRUE(std::string(error.what())
                        .ends_with("; the change may have been carried out all the same: list the "
                                   "reticles before you repeat it"))
            << error.what();
    }
}

TEST(ReticleClient, NothingIsSentUnlessAllCanBe) {
    std::vector<std::string> requests;
    {
        const FakeService service(answering(encodeFrame(EMPTY_LIST), &requests));
        ReticleClient client(HOST, service.port(), 10s);
        EXPECT_THROW(client.add({{"a", "1"}, {"b", ""}}), InvalidRequest);
    }
    EXPECT_EQ(requests, std::vector<std::string>{});
}

TEST(ReticleClient, ChangesOfNothingReturnTheList) {
    for (const auto& call : {+[](ReticleClient& client) { client.add({}); },
                             +[](ReticleClient& client) { client.remove({}); }}) {
        EXPECT_EQ(requestOf(call), R"({"action":"RETICLES_GET_ALL"})");
    }
}

TEST(ReticleClient, HasTheServicesPortAndATimeoutByItself) {
    static_assert(std::is_constructible_v<ReticleClient, const char*>);
    EXPECT_EQ(ReticleClient::DEFAULT_PORT, 3451);
    EXPECT_EQ(ReticleClient::DEFAULT_TIMEOUT, 10s);
}

TEST(ReticleClient, AWaitIsToldEverySecond) {
    const FakeService service([](FakePeer& peer) { peer.waitForClose(); });
    std::vector<std::chrono::milliseconds> told;
    ReticleClient client(HOST, service.port(), 2500ms, -1,
                         [&told](std::chrono::milliseconds passed) { told.push_back(passed); });
    EXPECT_THROW(client.list(), NoReply);
    ASSERT_FALSE(told.empty());
    EXPECT_GE(told.front(), 1s);
    EXPECT_LE(told.back(), 2500ms);
}

TEST(ReticleClient, ReturnsTheReply) {
    const FakeService service(answering(encodeFrame(ONE_RETICLE)));
    const Reply reply = ReticleClient(HOST, service.port(), 10s).list();
    EXPECT_EQ(reply.json, ONE_RETICLE);
    ASSERT_EQ(reply.reticles.size(), 1U);
    EXPECT_EQ(reply.reticles[0].name, "Dot");
}

TEST(ReticleClient, TellsHowMuchOfARequestIsSent) {
    constexpr std::size_t DATA_BYTES = 3'000'000;
    const FakeService service(answering(encodeFrame(EMPTY_LIST)));
    ReticleClient client(HOST, service.port(), 30s);
    std::vector<std::size_t> sent;
    std::size_t total = 0;
    client.setUploadListener([&](std::size_t sentBytes, std::size_t totalBytes) {
        sent.push_back(sentBytes);
        total = totalBytes;
    });
    client.add({{"Big", std::string(DATA_BYTES, 'x')}});
    EXPECT_GT(total, DATA_BYTES);
    ASSERT_GT(sent.size(), 1U);
    EXPECT_TRUE(std::is_sorted(sent.begin(), sent.end()));
    EXPECT_EQ(sent.back(), total);
}

TEST(ReticleClient, ACallThatWaitsCanBeCancelled) {
    const Socket cancel(::eventfd(0, EFD_CLOEXEC));
    const FakeService service([&cancel](FakePeer& peer) {
        peer.receiveRequest();
        ::eventfd_write(cancel.descriptor(), 1);
        peer.waitForClose();
    });
    ReticleClient client(HOST, service.port(), 3600s, cancel.descriptor());
    EXPECT_THROW(client.list(), Cancelled);
    // The dropped connection lets the service go on to the next one, cancelled before it begins.
    EXPECT_THROW(client.list(), Cancelled);
}

TEST(ReticleClient, TakesAReplyByteByByte) {
    const FakeService service([](FakePeer& peer) {
        peer.receiveRequest();
        constexpr int PAUSE_MS = 1;
        for (const char byte : encodeFrame(ONE_RETICLE)) {
            peer.send({&byte, 1});
            // Waits for nothing but lets the byte go out alone.
            (void)peer.hasClosed(PAUSE_MS);
        }
        peer.waitForClose();
    });
    EXPECT_EQ(ReticleClient(HOST, service.port(), 10s).list().json, ONE_RETICLE);
}

TEST(ReticleClient, SendsALongRequestInManyPieces) {
    const std::string data(4'000'000, 'x');
    const std::string request = requestOf([&](ReticleClient& client) {
        client.add({{"n", data}});
    });
    EXPECT_TRUE(request == R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"data":")" + data +
                               R"(","name":"n"}]})");
}

TEST(ReticleClient, UsesOneConnectionForManyCalls) {
    std::atomic<int> connections = 0;
    const FakeService service([&](FakePeer& peer) {
        ++connections;
        while (!peer.receiveRequest().empty()) {
            peer.send(encodeFrame(EMPTY_LIST));
        }
    });
    ReticleClient client(HOST, service.port(), 10s);
    client.list();
    client.activate(1);
    ReticleClient moved = std::move(client);
    moved.list();
    EXPECT_EQ(connections, 1);
}

TEST(ReticleClient, ThrowsTheRefusalAndGoesOn) {
    std::atomic<int> connections = 0;
    const FakeService service([&](FakePeer& peer) {
        ++connections;
        peer.receiveRequest();
        peer.send(encodeFrame(R"({"result":"RETICLE_INDEX_NOT_FOUND"})"));
        peer.receiveRequest();
        peer.send(encodeFrame(EMPTY_LIST));
        peer.waitForClose();
    });
    ReticleClient client(HOST, service.port(), 10s);
    try {
        client.activate(99);
        FAIL();
    } catch (const Refused& refusal) {
        EXPECT_EQ(refusal.resultName(), "RETICLE_INDEX_NOT_FOUND");
        EXPECT_EQ(refusal.reply().json, R"({"result":"RETICLE_INDEX_NOT_FOUND"})");
        EXPECT_STREQ(refusal.what(),
                     "refused by the device: RETICLE_INDEX_NOT_FOUND: the device has no reticle of "
                     "this index: list the reticles to see which there are");
    }
    client.list();
    EXPECT_EQ(connections, 1);
}

TEST(ReticleClient, CannotConnectWhereNobodyListens) {
    EXPECT_THROW(ReticleClient(HOST, test::unusedPort(), 10s), CannotConnect);
    EXPECT_THROW(ReticleClient("not an address", 1, 10s), CannotConnect);
}

TEST(ReticleClient, SilenceEndsAtTheTimeout) {
    const FakeService service([](FakePeer& peer) { peer.waitForClose(); });
    ReticleClient client(HOST, service.port(), 1s);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THROW(client.list(), NoReply);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 1s);
}

TEST(ReticleClient, SaysWhatToCheckWhenNothingComes) {
    const FakeService service([](FakePeer& peer) { peer.waitForClose(); });
    ReticleClient client(HOST, service.port(), 1s);
    try {
        client.list();
        FAIL();
    } catch (const NoReply& error) {
        EXPECT_EQ(std::string(error.what()),
                  "no reply from 127.0.0.1:" + std::to_string(service.port()) +
                      " within 1 s: check the device's RTOS side and the service's log (a link to "
                      "the RTOS that was lost stays so until the service restarts)");
    }
}

TEST(ReticleClient, AServiceThatDoesNotReadIsNoReply) {
    const FakeService service([](FakePeer& peer) {
        constexpr int POLL_MS = 5000;
        // Readable only since bytes wait; none is taken until the client gives up.
        EXPECT_TRUE(peer.hasClosed(POLL_MS));
        peer.waitForClose();
    });
    ReticleClient client(HOST, service.port(), 1s);
    EXPECT_THROW(client.list(), NoReply);
}

TEST(ReticleClient, ALateReplyIsNotTakenForTheNext) {
    std::atomic<int> connections = 0;
    const FakeService service([&](FakePeer& peer) {
        const bool isLate = ++connections == 1;
        peer.receiveRequest();
        if (isLate) {
            peer.waitForClose();
            peer.send(encodeFrame(EMPTY_LIST));
            return;
        }
        peer.send(encodeFrame(ONE_RETICLE));
        peer.waitForClose();
    });
    ReticleClient client(HOST, service.port(), 3s);
    EXPECT_THROW(client.list(), NoReply);
    EXPECT_EQ(client.list().json, ONE_RETICLE);
    EXPECT_EQ(connections, 2);
}

TEST(ReticleClient, ConnectsAnewAfterTheServiceWasGone) {
    const FakeService service([](FakePeer& peer) {
        peer.receiveRequest();
        peer.send(encodeFrame(EMPTY_LIST));
    });
    ReticleClient client(HOST, service.port(), 10s);
    client.list();
    EXPECT_THROW(client.list(), NoReply);
    EXPECT_NO_THROW(client.list());
}

TEST(ReticleClient, ForeignAnswersAreMalformed) {
    for (const std::string& bytes :
         {std::string("HTTP/1.1 400 Bad Request\r\n\r\n"), encodeFrame("not JSON"),
          encodeFrame("[]"), encodeFrame(""), encodeFrame(R"({"result":"OK"})")}) {
        const FakeService service(answering(bytes));
        ReticleClient client(HOST, service.port(), 10s);
        EXPECT_THROW(client.list(), MalformedReply) << bytes;
    }
}

TEST(ReticleClient, WhatCannotBeSentIsNotSent) {
    std::vector<std::string> requests;
    {
        const FakeService service(answering(encodeFrame(EMPTY_LIST), &requests));
        ReticleClient client(HOST, service.port(), 10s);
        EXPECT_THROW(client.add({{"\xFF", "x"}}), InvalidText);
        EXPECT_THROW(client.update(1, "n", std::string(4194304, 'x')), RequestTooLarge);
        EXPECT_THROW(client.update(-1, "n", ""), InvalidRequest);
        client.list();
    }
    EXPECT_EQ(requests, std::vector<std::string>{R"({"action":"RETICLES_GET_ALL"})"});
}

TEST(ReticleClient, EveryErrorHasTheOneBase) {
    EXPECT_THROW(ReticleClient(HOST, test::unusedPort(), 10s), ClientError);
    const FakeService service([](FakePeer&) {});
    EXPECT_THROW(ReticleClient(HOST, service.port(), 10s).list(), ClientError);
}

std::atomic<int> interruptions = 0;

TEST(ReticleClient, GoesOnWaitingAfterASignal) {
    struct sigaction handler {};
    handler.sa_handler = [](int) { ++interruptions; };
    struct sigaction before {};
    ::sigaction(SIGUSR1, &handler, &before);
    const pthread_t waiting = ::pthread_self();
    const FakeService service([waiting](FakePeer& peer) {
        peer.receiveRequest();
        for (int sent = 1; sent <= 3; ++sent) {
            ::pthread_kill(waiting, SIGUSR1);
            while (interruptions < sent) {
                std::this_thread::yield();
            }
        }
        peer.send(encodeFrame(EMPTY_LIST));
        peer.waitForClose();
    });
    EXPECT_EQ(ReticleClient(HOST, service.port(), 10s).list().json, EMPTY_LIST);
    ::sigaction(SIGUSR1, &before, nullptr);
}

std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::distance(begin(descriptors), end(descriptors));
}

TEST(ReticleClient, GivesItsSocketBackOnEveryPath) {
    const auto before = openDescriptors();
    {
        // Counted when it has ended: until then it closes its ends on its own time.
        const FakeService service(answering("garbage"));
        ReticleClient client(HOST, service.port(), 10s);
        EXPECT_THROW(client.list(), MalformedReply);
        EXPECT_THROW(ReticleClient(HOST, test::unusedPort(), 10s), CannotConnect);
        const ReticleClient idle(HOST, service.port(), 10s);
    }
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace

}  // namespace reticle
