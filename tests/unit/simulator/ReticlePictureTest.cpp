#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "simulator/base/Files.h"
#include "simulator/web/ReticlePicture.h"
#include "tests/unit/simulator/TemporaryRoot.h"

namespace sim {
namespace {

/// A device with one reticle.
class ReticlePictureTest : public testing::Test {
protected:
    void write(const std::string& data) const {
        std::filesystem::create_directories(root.path() / "reticle");
        replaceFile(root.path() / "reticle/cross.svg", data);
    }

    /// Why there is no picture; empty where there is one.
    [[nodiscard]] std::string complaint(int index) const {
        try {
            return reticlePicture(list, root.path(), index).substr(0, 0);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    test::TemporaryRoot root;
    ReticleList list{{3, "Cross", "cross.svg", "#00c853", false, true}};
};

TEST_F(ReticlePictureTest, HasTheUsersColourWhereTheServicePutsIt) {
    write(R"("user_color"<a stroke="user_color" fill="user_colo"/>"user_color")");
    EXPECT_EQ(reticlePicture(list, root.path(), 3),
              R"("#00c853"<a stroke="#00c853" fill="user_colo"/>"#00c853")");
    const std::string others = R"(user_color 'user_color' "user_color user_color")";
    write(others);
    EXPECT_EQ(reticlePicture(list, root.path(), 3), others);
}

TEST_F(ReticlePictureTest, IsTheDataWhereTheyHaveNoPlaceForAColour) {
    write("any data");
    EXPECT_EQ(reticlePicture(list, root.path(), 3), "any data");
    write("");
    EXPECT_EQ(reticlePicture(list, root.path(), 3), "");
}

TEST_F(ReticlePictureTest, IsNotThereWithoutReticleOrFile) {
    EXPECT_EQ(complaint(3), "Its file cannot be read.");
    EXPECT_EQ(complaint(2), "No reticle has that index.");
}

TEST_F(ReticlePictureTest, StaysWithinBoundsWhateverTheColour) {
    write(R"("user_color" "user_color" "user_color")");
    list.front().userColor = std::string(6'000'000, 'x');
    EXPECT_EQ(complaint(3), "The picture is too large.");
}

}  // namespace
}  // namespace sim
