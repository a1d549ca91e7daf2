#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <future>
#include <string>
#include <thread>

#include "reticles/readStorageFile.h"
#include "tests/support/FlashFiles.h"
#include "tests/support/Patience.h"
#include "tests/unit/service/DescriptorLimit.h"
#include "tests/unit/service/LinkSeams.h"

namespace reticled {
namespace {

std::atomic<int> interruptions{0};

class ReadStorageFileTest : public testing::Test {
protected:
    FlashFiles flash;
};

TEST_F(ReadStorageFileTest, FileIsReadByteForByte) {
    const std::string content = std::string("a\r\n\xFF") + '\0' + "b";
    flash.write("file", content);
    EXPECT_EQ(readStorageFile("/tmp/FL0/file").text(), content);
}

TEST_F(ReadStorageFileTest, LargeFileIsReadWhole) {
    std::string content(6'000'001, 'x');
    content.back() = 'y';
    flash.write("file", content);
    EXPECT_TRUE(readStorageFile("/tmp/FL0/file").text() == content);
}

TEST_F(ReadStorageFileTest, FilesThatCannotBeReadAreEmpty) {
    flash.write("empty", "");
    EXPECT_EQ(readStorageFile("/tmp/FL0/empty").text(), "");
    EXPECT_EQ(readStorageFile("/tmp/FL0/missing").text(), "");
    EXPECT_EQ(readStorageFile("/tmp/FL0/").text(), "");
    EXPECT_EQ(readStorageFile("").text(), "");
}

TEST_F(ReadStorageFileTest, FileWithoutASizeIsReadToItsEnd) {
    ASSERT_EQ(mkfifo("/tmp/FL0/fifo", 0600), 0);
    const std::string content(200'000, 'x');
    auto written =
        std::async(std::launch::async, [&] { std::ofstream("/tmp/FL0/fifo") << content; });
    EXPECT_TRUE(readStorageFile("/tmp/FL0/fifo").text() == content);
}

TEST_F(ReadStorageFileTest, ReadThatASignalInterruptsIsDoneAgain) {
    ASSERT_EQ(mkfifo("/tmp/FL0/fifo", 0600), 0);
    struct sigaction interrupting {};
    interrupting.sa_handler = [](int) { ++interruptions; };
    struct sigaction original {};
    sigaction(SIGUSR1, &interrupting, &original);
    std::string read;
    std::jthread reader([&] { read = readStorageFile("/tmp/FL0/fifo").text(); });
    std::ofstream writer("/tmp/FL0/fifo");
    // Again and again: the first may come before the reader waits.
    ASSERT_TRUE(eventually([&] {
        pthread_kill(reader.native_handle(), SIGUSR1);
        return interruptions > 20;
    }));
    writer << "content" << std::flush;
    writer.close();
    reader.join();
    sigaction(SIGUSR1, &original, nullptr);
    EXPECT_EQ(read, "content");
}

// Its time does not fit into 32 bits, nor does a 32-bit system tell its size.
TEST_F(ReadStorageFileTest, FileChangedAfter2038IsReadWhole) {
    const std::string content(200'000, 'x');
    flash.write("file", content);
    ASSERT_EQ(std::system("touch -d 2040-01-01 /tmp/FL0/file"), 0);
    EXPECT_TRUE(readStorageFile("/tmp/FL0/file").text() == content);
}

// The RTOS may be writing on: a file that grows as fast as it is read would have no end.
TEST_F(ReadStorageFileTest, FileThatGrowsMeanwhileIsReadToTheSizeThatItHad) {
    flash.write("file", "content");
    const seams::BeforeRead growing(
        [] { std::ofstream("/tmp/FL0/file", std::ios::app) << " and more"; });
    EXPECT_EQ(readStorageFile("/tmp/FL0/file").text(), "content");
}

TEST_F(ReadStorageFileTest, NoDescriptorIsKept) {
    flash.write("file", "content");
    const std::size_t before = openDescriptors();
    EXPECT_EQ(readStorageFile("/tmp/FL0/file").text(), "content");
    EXPECT_EQ(readStorageFile("/tmp/FL0/missing").text(), "");
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace reticled
