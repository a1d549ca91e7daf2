#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include "tests/support/FrameClient.h"
#include "tests/support/Patience.h"
#include "tests/system/Exchanges.h"
#include "tests/system/ForegroundTest.h"

namespace {

namespace fs = std::filesystem;

using exchanges::DOT;
using exchanges::LIST_REQUEST;
using exchanges::ONE_DOT_LIST;
using exchanges::ONE_DOT_REPLY;

const std::string ROOT = "/tmp/FL0/";
constexpr auto LIST_NAME = "list.json";
constexpr auto DOT_NAME = "reticle/dot.svg";
constexpr auto NO_RETICLES = R"({
	"result" : "OK",
	"reticles" : null
})";
constexpr auto REFUSED_ANSWER = R"([{"ret_val":8}])";
constexpr auto REFUSED_REPLY = "{\n\t\"result\" : \"UNKNOWN_ACTION\"\n}";

/// A small file system in the place of the shared storage, as long as the object lives.
class SmallStorage {
public:
    explicit SmallStorage(const std::string& options) {
        require(::mount("tmpfs", ROOT.c_str(), "tmpfs", MS_NOSUID, options.c_str()));
    }
    SmallStorage(const SmallStorage&) = delete;
    SmallStorage& operator=(const SmallStorage&) = delete;
    ~SmallStorage() { umount2(ROOT.c_str(), MNT_DETACH); }

    void makeReadOnly() const {
        require(::mount(nullptr, ROOT.c_str(), nullptr, MS_REMOUNT | MS_NOSUID | MS_RDONLY, ""));
    }

private:
    static void require(int result) {
        if (result < 0) {
            throw std::system_error(errno, std::generic_category(), "mount " + ROOT);
        }
    }
};

void makeFifo(const std::string& path) {
    if (mkfifo(path.c_str(), S_IRUSR | S_IWUSR) < 0) {
        throw std::system_error(errno, std::generic_category(), "mkfifo " + path);
    }
}

/// A FIFO in the storage, and its writing end once the service has come to read it: the moment in
/// which a file is being read, for as long as a test likes.
class FileBeingRead {
public:
    explicit FileBeingRead(const std::string& name) : _path(ROOT + name) {
        fs::remove(_path);
        makeFifo(_path);
    }

    void waitForReader() {
        int descriptor = -1;
        // Without a reader there is no writing end.
        EXPECT_TRUE(eventually([&] {
            descriptor = open(_path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return descriptor >= 0;
        }));
        _writer = FileDescriptor(descriptor, "open " + _path);
    }

    // Returns when the service has taken the bytes and goes on reading.
    void write(std::string_view text) const {
        EXPECT_EQ(::write(_writer.get(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
        EXPECT_TRUE(eventually([this] {
            int waiting = -1;
            return ioctl(_writer.get(), FIONREAD, &waiting) == 0 && waiting == 0;
        }));
    }

    void end() { _writer.close(); }

private:
    std::string _path;
    FileDescriptor _writer;
};

class StorageFaultsTest : public ForegroundTest {
protected:
    StorageFaultsTest() { writeOneDot(); }

    void writeOneDot() const {
        flash.write(LIST_NAME, ONE_DOT_LIST);
        flash.write(DOT_NAME, DOT);
    }

    // RTOS writers put a new file in the place of the old one.
    void replace(const std::string& name, std::string_view content) const {
        flash.write("new", content);
        fs::rename(ROOT + "new", ROOT + name);
    }

    void askForList() {
        client.sendFrame(exchanges::GET_ALL);
        EXPECT_EQ(rtos.exchange(exchanges::LIST_ANSWER), LIST_REQUEST);
    }

    std::string list() {
        askForList();
        return client.readReply();
    }

    void sendAdd(const std::string& data) {
        client.sendFrame(R"({"action":"RETICLES_ADD_OR_UPDATE","reticles":[{"name":"A","data":")" +
                         data + "\"}]}");
    }

    void expectAdd() {
        EXPECT_EQ(rtos.receiveRequest(), R"([
	{
		"msg_id" : 78,
		"param2_name" : "A",
		"param3_data" : "a:/new_reticle_data0"
	}
])");
    }

    void askToAdd(const std::string& data) {
        sendAdd(data);
        expectAdd();
    }

    FrameClient client;
};

TEST_F(StorageFaultsTest, MissingStorageIsUsedAgainOnceItIsThere) {
    flash.remove();
    EXPECT_EQ(list(), NO_RETICLES);
    writeOneDot();
    EXPECT_EQ(list(), ONE_DOT_REPLY);
}

TEST_F(StorageFaultsTest, ReadOnlyStorageIsListedAndTheRtosIsToldOfAFileThatIsNotThere) {
    const SmallStorage storage("size=64k");
    writeOneDot();
    storage.makeReadOnly();
    EXPECT_EQ(list(), ONE_DOT_REPLY);
    askToAdd("<a/>");
    EXPECT_FALSE(flash.exists("new_reticle_data0"));
    rtos.answer(REFUSED_ANSWER);
    EXPECT_EQ(client.readReply(), REFUSED_REPLY);
    EXPECT_EQ(list(), ONE_DOT_REPLY);
}

TEST_F(StorageFaultsTest, FullStorageCutsADataFileShortAndGivesItsRoomBackAfterwards) {
    const SmallStorage storage("size=64k");
    writeOneDot();
    const std::string tooLarge(200000, 'x');
    askToAdd(tooLarge);
    EXPECT_TRUE(flash.exists("new_reticle_data0"));
    EXPECT_LT(flash.read("new_reticle_data0").size(), tooLarge.size());
    rtos.answer(REFUSED_ANSWER);
    EXPECT_EQ(client.readReply(), REFUSED_REPLY);
    const std::string fitting(30000, 'x');
    askToAdd(fitting);
    EXPECT_TRUE(flash.read("new_reticle_data0") == fitting);
    rtos.answer(REFUSED_ANSWER);
    EXPECT_EQ(client.readReply(), REFUSED_REPLY);
    EXPECT_EQ(list(), ONE_DOT_REPLY);
}

TEST_F(StorageFaultsTest, ListFileReplacedWhileBeingReadIsReadToTheEndOfTheOldOne) {
    FileBeingRead old(LIST_NAME);
    askForList();
    old.waitForReader();
    old.write(ONE_DOT_LIST.substr(0, 20));
    replace(LIST_NAME, "[{}]");
    old.write(ONE_DOT_LIST.substr(20));
    old.end();
    EXPECT_EQ(client.readReply(), ONE_DOT_REPLY);
    EXPECT_EQ(list(), NO_RETICLES);
}

TEST_F(StorageFaultsTest, ReticleFileReplacedWhileBeingReadIsReadToTheEndOfTheOldOne) {
    FileBeingRead old(DOT_NAME);
    askForList();
    old.waitForReader();
    old.write(DOT.substr(0, 10));
    replace(DOT_NAME, "");
    old.write(DOT.substr(10));
    old.end();
    EXPECT_EQ(client.readReply(), ONE_DOT_REPLY);
    EXPECT_EQ(list(), NO_RETICLES);
}

// With the real timing of an RTOS that renames and does not wait for anybody.
TEST_F(StorageFaultsTest, ReticleFileThatIsReplacedAllTheTimeIsNeverMixed) {
    constexpr int LISTS = 10;
    constexpr std::size_t BYTES = 1000000;
    const std::string allA(BYTES, 'a');
    const std::string allB(BYTES, 'b');
    replace(DOT_NAME, allA);
    const std::jthread rtosWriter([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            replace(DOT_NAME, allB);
            replace(DOT_NAME, allA);
        }
    });
    for (int i = 0; i < LISTS; ++i) {
        const std::string reply = list();
        EXPECT_NE(reply.find(allA) != std::string::npos, reply.find(allB) != std::string::npos)
            << reply.size() << " bytes";
    }
}

TEST_F(StorageFaultsTest, ReticleFileThatIsRewrittenInPlaceCostsNoMoreThanItself) {
    constexpr int LISTS = 10;
    const std::string text(1000000, 'x');
    {
        const std::jthread rtosWriter([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                flash.write(DOT_NAME, text);
            }
        });
        for (int i = 0; i < LISTS; ++i) {
            EXPECT_TRUE(list().starts_with("{\n\t\"result\" : \"OK\",\n\t\"reticles\" : "));
        }
    }
    EXPECT_NE(list().find(text), std::string::npos);
}

TEST_F(StorageFaultsTest, FifoAsReticleFileHoldsUpEverybodyUntilItsWriterCloses) {
    FileBeingRead fifo(DOT_NAME);
    askForList();
    fifo.waitForReader();
    fifo.write(DOT);
    FrameClient other;
    other.sendFrame(exchanges::GET_ALL);
    EXPECT_TRUE(service.hasProgress("json is true, length = 29\n", 2));
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_TRUE(client.connection().isQuiet());
    fifo.end();
    EXPECT_EQ(client.readReply(), ONE_DOT_REPLY);
    EXPECT_EQ(rtos.exchange(exchanges::FULL), LIST_REQUEST);
    EXPECT_EQ(other.readReply(), exchanges::FULL_REPLY);
}

TEST_F(StorageFaultsTest, FifoWhoseWriterLeavesWithoutAByteIsAnEmptyFile) {
    FileBeingRead fifo(LIST_NAME);
    askForList();
    fifo.waitForReader();
    fifo.end();
    EXPECT_EQ(client.readReply(), NO_RETICLES);
}

TEST_F(StorageFaultsTest, LinkAsDataFileIsFollowed) {
    flash.write("target", "of somebody else");
    fs::create_symlink("target", ROOT + "new_reticle_data0");
    askToAdd("<a/>");
    EXPECT_EQ(flash.read("target"), "<a/>");
    rtos.answer(REFUSED_ANSWER);
    EXPECT_EQ(client.readReply(), REFUSED_REPLY);
    EXPECT_FALSE(flash.exists("new_reticle_data0"));
    EXPECT_TRUE(flash.exists("target"));
}

TEST_F(StorageFaultsTest, FifoAsDataFileHoldsUpEverybodyUntilItIsRead) {
    makeFifo(ROOT + "new_reticle_data0");
    sendAdd("<a/>");
    EXPECT_TRUE(service.hasProgress("buildmsg: "));
    FrameClient other;
    other.sendFrame(exchanges::GET_ALL);
    EXPECT_TRUE(service.hasProgress("json is true, length = 29\n"));
    EXPECT_TRUE(rtos.isQuiet());
    EXPECT_EQ(flash.read("new_reticle_data0"), "<a/>");
    expectAdd();
    rtos.answer(REFUSED_ANSWER);
    EXPECT_EQ(client.readReply(), REFUSED_REPLY);
    EXPECT_EQ(rtos.exchange(exchanges::FULL), LIST_REQUEST);
    EXPECT_EQ(other.readReply(), exchanges::FULL_REPLY);
}

TEST_F(StorageFaultsTest, DeviceWithoutContentIsAnEmptyReticleFile) {
    flash.write(LIST_NAME, R"([{"reticles":[
{"index":2,"name":"Null","data":"../../../dev/null","userColor":"red"},
{"index":1,"name":"Dot","data":"dot.svg","userColor":"red","isDeletable":1,"isActive":0}]}])");
    EXPECT_EQ(list(), ONE_DOT_REPLY);
}

TEST_F(StorageFaultsTest, WithoutADescriptorFilesCountAsMissingAndTheReplyGoesOut) {
    constexpr rlim_t STANDARD_STREAMS = 3;
    EXPECT_EQ(list(), ONE_DOT_REPLY);
    const rlim_t usual = service.info().setSoftLimit(RLIMIT_NOFILE, STANDARD_STREAMS);
    EXPECT_EQ(list(), NO_RETICLES);
    askToAdd("<a/>");
    EXPECT_FALSE(flash.exists("new_reticle_data0"));
    rtos.answer(REFUSED_ANSWER);
    EXPECT_EQ(client.readReply(), REFUSED_REPLY);
    service.info().setSoftLimit(RLIMIT_NOFILE, usual);
    EXPECT_EQ(list(), ONE_DOT_REPLY);
}

}  // namespace
