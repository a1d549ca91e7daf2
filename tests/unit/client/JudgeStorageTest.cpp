#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/reticlectl/doctor/judgeStorage.h"

namespace reticlectl {

namespace {

using testing::HasSubstr;

constexpr std::uintmax_t MEGABYTE = 1024 * 1024;
const ServiceUser SERVICE_USER{"reticled", 995, {994, 993}};

/// As the packages make it: of root, the group of the service.
StorageState storage() {
    StorageState state;
    state.exists = true;
    state.isDirectory = true;
    state.mode = 02775;
    state.owner = 0;
    state.group = 993;
    state.freeBytes = 64 * MEGABYTE;
    return state;
}

TEST(JudgeStorage, OneThatTheServiceMayWriteIsWell) {
    const Finding finding = judgeStorage(storage(), SERVICE_USER);
    EXPECT_EQ(finding.verdict, Verdict::OK);
    EXPECT_EQ(finding.text,
              "/tmp/FL0, mode 2775, owner root, 64 MB left; user reticled may write there");
}

TEST(JudgeStorage, ModeDecidesWhoMayWrite) {
    StorageState state = storage();
    EXPECT_TRUE(state.isOpenFor({"owner", 0, {}}));
    EXPECT_FALSE(state.isOpenFor({"other", 5, {}}));
    state.mode = 0755;
    EXPECT_FALSE(state.isOpenFor(SERVICE_USER));
    state.owner = SERVICE_USER.uid;
    EXPECT_TRUE(state.isOpenFor(SERVICE_USER));
    // Who is of the group has the group's rights, be the others' wider.
    state = storage();
    state.mode = 0757;
    EXPECT_FALSE(state.isOpenFor(SERVICE_USER));
    EXPECT_TRUE(state.isOpenFor({"other", 5, {}}));
    state.mode = 0776;
    EXPECT_FALSE(state.isOpenFor({"other", 5, {}}));
}

TEST(JudgeStorage, OneThatTheServiceMayNotWriteIsBad) {
    StorageState state = storage();
    state.mode = 0755;
    const Finding finding = judgeStorage(state, SERVICE_USER);
    EXPECT_EQ(finding.verdict, Verdict::BAD);
    EXPECT_THAT(finding.text, HasSubstr("mode 755, owner root"));
    EXPECT_THAT(finding.text, HasSubstr("user reticled may not write there"));
    EXPECT_EQ(judgeStorage(state, std::nullopt).verdict, Verdict::OK);
}

TEST(JudgeStorage, OneThatIsMissingOrNoDirectoryIsBad) {
    StorageState state;
    EXPECT_EQ(judgeStorage(state, SERVICE_USER).verdict, Verdict::BAD);
    EXPECT_EQ(judgeStorage(state, SERVICE_USER).text, "/tmp/FL0 is not there");
    state.exists = true;
    EXPECT_EQ(judgeStorage(state, SERVICE_USER).text, "/tmp/FL0 is no directory");
}

TEST(JudgeStorage, OneThatIsReadOnlyIsBad) {
    StorageState state = storage();
    state.isReadOnly = true;
    EXPECT_EQ(judgeStorage(state, SERVICE_USER).verdict, Verdict::BAD);
}

TEST(JudgeStorage, LittleRoomWantsALookAndNoneIsBad) {
    StorageState state = storage();
    state.freeBytes = 4 * MEGABYTE;
    EXPECT_EQ(judgeStorage(state, SERVICE_USER).verdict, Verdict::OK);
    state.freeBytes = 4 * MEGABYTE - 1;
    EXPECT_EQ(judgeStorage(state, SERVICE_USER).verdict, Verdict::LOOK);
    state.freeBytes = 0;
    EXPECT_EQ(judgeStorage(state, SERVICE_USER).verdict, Verdict::BAD);
}

TEST(JudgeStorage, DataThatIsLeftBehindWantsALook) {
    StorageState state = storage();
    EXPECT_EQ(judgeDataFiles(state).verdict, Verdict::OK);
    state.dataFiles = 2;
    state.dataBytes = 1025;
    EXPECT_EQ(judgeDataFiles(state).verdict, Verdict::LOOK);
    EXPECT_EQ(judgeDataFiles(state).text, "2 new_reticle_data of 2 KB");
}

}  // namespace

}  // namespace reticlectl
