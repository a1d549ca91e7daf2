#include <gmock/gmock-matchers.h>
#include <json/json.h>
#include <sys/mount.h>

#include <map>
#include <sstream>
#include <string>

#include "tests/support/Patience.h"
#include "tests/support/ScriptedRtos.h"
#include "tests/system/ForegroundService.h"
#include "tests/system/PlayedDeviceTest.h"
#include "tests/system/Reticlectl.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// What one run of the doctor has found.
struct Examination {
    int status;
    std::string verdict;
    /// "VERDICT: TEXT", by subject.
    std::map<std::string, std::string> findings;
};

class DoctorTest : public PlayedDeviceTest {
protected:
    /// \param timeoutSeconds for the list.
    static Examination examine(const std::string& timeoutSeconds = "60") {
        const Reticlectl doctor =
            Reticlectl::run({"--timeout", timeoutSeconds, "--json", "doctor"});
        EXPECT_EQ(doctor.error, "");
        Json::Value document;
        std::istringstream(doctor.output) >> document;
        Examination examination{doctor.status, document["verdict"].asString(), {}};
        for (const Json::Value& finding : document["findings"]) {
            examination.findings[finding["subject"].asString()] =
                finding["verdict"].asString() + ": " + finding["text"].asString();
        }
        return examination;
    }
};

TEST_F(DoctorTest, AllIsWell) {
    ASSERT_EQ(Reticlectl::run({"list"}).status, Reticlectl::DONE);
    Examination found = examine();
    EXPECT_EQ(found.status, Reticlectl::DONE);
    EXPECT_EQ(
        found.findings["port 3451"],
        "ok: reticled (process " + std::to_string(service->pid()) + ") listens, as user root");
    EXPECT_EQ(found.findings["RTOS"], "ok: listens on port 3425, and is connected");
    EXPECT_THAT(found.findings["storage"], StartsWith("ok: /tmp/FL0, mode "));
    EXPECT_EQ(found.findings["data files"], "ok: none is left behind");
    EXPECT_THAT(found.findings["list"], StartsWith("ok: 8 reticles from 127.0.0.1:3451, in "));
    EXPECT_THAT(found.findings["versions"], HasSubstr("reticlectl "));
    EXPECT_EQ(found.findings.size(), 9U);
}

TEST_F(DoctorTest, ThereIsALineForEachFindingAndOneForWhatToDo) {
    service.reset();
    const Reticlectl doctor = Reticlectl::run({"doctor"});
    EXPECT_EQ(doctor.status, 1);
    EXPECT_THAT(doctor.output, StartsWith("bad   port 3451     nobody listens\n"
                                          "                    -> start the service: "));
    EXPECT_THAT(doctor.output, HasSubstr("\nok    data files    none is left behind\n"));
}

TEST_F(DoctorTest, NoService) {
    service.reset();
    Examination found = examine();
    EXPECT_EQ(found.status, 1);
    EXPECT_EQ(found.verdict, "bad");
    EXPECT_EQ(found.findings["port 3451"], "bad: nobody listens");
    EXPECT_THAT(found.findings["RTOS"], StartsWith("ok: "));
    EXPECT_THAT(found.findings["list"], StartsWith("bad: cannot connect to 127.0.0.1:3451"));
}

TEST_F(DoctorTest, TwoServices) {
    const ForegroundService second;
    EXPECT_TRUE(eventually([] {
        return examine().findings["port 3451"].starts_with("bad: 2 sockets listen, of reticled");
    }));
}

TEST_F(DoctorTest, NoRtos) {
    EXPECT_EQ(simulator->stop(), 0);
    Examination found = examine("1");
    EXPECT_EQ(found.status, 1);
    EXPECT_THAT(found.findings["port 3451"], StartsWith("ok: "));
    EXPECT_EQ(found.findings["RTOS"], "bad: nobody listens on port 3425");
    EXPECT_THAT(found.findings["list"], StartsWith("bad: no reply from "));
}

TEST_F(DoctorTest, AStorageThatIsReadOnly) {
    ASSERT_EQ(::mount("tmpfs", "/tmp/FL0", "tmpfs", MS_NOSUID | MS_RDONLY, ""), 0);
    Examination found = examine();
    EXPECT_EQ(::umount("/tmp/FL0"), 0);
    EXPECT_EQ(found.status, 1);
    EXPECT_THAT(found.findings["storage"], HasSubstr("its file system is read-only"));
}

TEST_F(DoctorTest, DataThatIsLeftBehindIsLeftAlone) {
    flash.write("new_reticle_data0", std::string(3000, 'x'));
    flash.write("new_reticle_data12", "x");
    Examination found = examine();
    EXPECT_EQ(found.status, Reticlectl::DONE);
    EXPECT_EQ(found.verdict, "look");
    EXPECT_EQ(found.findings["data files"], "look: 2 new_reticle_data of 3 KB");
    EXPECT_TRUE(flash.exists("new_reticle_data0"));
    EXPECT_TRUE(flash.exists("new_reticle_data12"));
}

TEST_F(DoctorTest, TheRtosIsNotConnectedTo) {
    service.reset();
    simulator.reset();
    ScriptedRtos rtos;
    EXPECT_THAT(examine().findings["RTOS"], StartsWith("ok: listens on port 3425"));
    EXPECT_FALSE(rtos.isCalled());
}

}  // namespace
