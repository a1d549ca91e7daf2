#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tests/browser/Chromium.h"
#include "tests/browser/HostilePicture.h"
#include "tests/support/Text.h"
#include "tests/system/Daemon.h"
#include "tests/system/Reticlectl.h"
#include "tests/system/Simulator.h"
#include "tests/system/SystemTest.h"

namespace {

constexpr Rgb LIGHT_GROUND{0xF6, 0xF7, 0xF4};
constexpr Rgb DARK_GROUND{0x0B, 0x0E, 0x12};
constexpr Rgb GREY_GROUND{0x77, 0x77, 0x77};

constexpr auto PAGE = "/tmp/FL0/gallery.html";

/// A square of the user's colour that fills its picture, and other data.
constexpr auto LIST = R"([{"reticles":[
{"index":3,"name":"Square","data":"square.svg","userColor":"#1264fe","isDeletable":false,"isActive":true},
{"index":8,"name":"Notes","data":"notes","userColor":"red","isDeletable":true,"isActive":false}]}])";
constexpr auto SQUARE =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 9 9"><rect width="9" height="9" fill="user_color"/></svg>)";
constexpr Rgb SQUARE_COLOUR{0x12, 0x64, 0xFE};

constexpr auto HOSTILE_LIST = R"json([{"reticles":[
{"index":0,"name":"\"><img src=x onerror=\"document.title='owned'\">","data":"hostile.svg","userColor":"red","isDeletable":true,"isActive":false},
{"index":1,"name":"<script>document.title='owned'</script>","data":"colour.svg","userColor":"url(file:///tmp/FL0/blue.svg)","isDeletable":true,"isActive":false},
{"index":2,"name":"</title><svg onload=\"document.title='owned'\">","data":"text","userColor":"red","isDeletable":true,"isActive":false}]}])json";

/// reticlectl makes the page from what the real service and the simulated device say.
class GalleryTest : public SystemTest {
protected:
    void startWith(const std::string& list) {
        flash.write("reticle_list.json", list);
        simulator.emplace();
        service.emplace();
        service->waitUntilListening();
    }

    static OpenedPage openGallery(const std::string& background) {
        const Reticlectl call =
            Reticlectl::run({"gallery", "--output", PAGE, "--background", background});
        EXPECT_EQ(call.status, Reticlectl::DONE) << call.error;
        EXPECT_EQ(call.output, "");
        return openInChromium(PAGE);
    }

    std::optional<Simulator> simulator;
    std::optional<Daemon> service;
};

/// A square picture of one colour stands on a ground of another.
void expectSquareOn(const Screenshot& screenshot, Rgb colour, Rgb ground) {
    constexpr std::size_t SMALLEST = 100;
    constexpr std::size_t BESIDE = 5;
    const auto corner = screenshot.first(colour);
    ASSERT_TRUE(corner) << "nothing is drawn in " << colour;
    const std::size_t width = screenshot.runToTheRight(*corner);
    const std::size_t height = screenshot.runDown(*corner);
    EXPECT_GE(width, SMALLEST);
    EXPECT_NEAR(static_cast<double>(width), static_cast<double>(height), 2);
    const std::size_t middle = corner->y + height / 2;
    EXPECT_EQ(screenshot.at({corner->x - BESIDE, middle}), ground);
    EXPECT_EQ(screenshot.at({corner->x + width + BESIDE, middle}), ground);
}

void expectPart(const std::string& dom, const std::string& part) {
    EXPECT_NE(dom.find(part), std::string::npos) << part << "\nis missing in\n" << dom;
}

TEST_F(GalleryTest, ShowsACardForEachReticleOnTheChosenBackground) {
    flash.write("reticle/square.svg", SQUARE);
    flash.write("reticle/notes", "1 < 2 & <b>bold</b>");
    startWith(LIST);

    const OpenedPage light = openGallery("light");
    EXPECT_EQ(countOf("<article", light.dom), 2U);
    expectPart(light.dom, ">Square</h2><span class=\"index\">Index 3</span>");
    expectPart(light.dom,
               "<span class=\"badge active\">Active</span><a download=\"reticle-3.svg\"");
    expectPart(light.dom, "#1264fe</span><span>107 bytes</span>");
    expectPart(light.dom, ">Notes</h2><span class=\"index\">Index 8</span>");
    expectPart(light.dom, "<p class=\"foot\"><span class=\"badge\">Deletable</span><a download=");
    expectPart(light.dom, "<pre>1 &lt; 2 &amp; &lt;b&gt;bold&lt;/b&gt;</pre>");
    expectPart(light.dom, "<a download=\"reticle-8.txt\" href=\"data:application/octet-stream");
    expectSquareOn(light.screenshot, SQUARE_COLOUR, LIGHT_GROUND);

    const OpenedPage dark = openGallery("dark");
    expectSquareOn(dark.screenshot, SQUARE_COLOUR, DARK_GROUND);
}

TEST_F(GalleryTest, TheGroundFollowsTheReadersSystemByItself) {
    flash.write("reticle/square.svg", SQUARE);
    flash.write("reticle/notes", "notes");
    startWith(LIST);
    ASSERT_EQ(Reticlectl::run({"gallery", "--output", PAGE}).status, Reticlectl::DONE);
    expectSquareOn(openInChromium(PAGE).screenshot, SQUARE_COLOUR, LIGHT_GROUND);
    expectSquareOn(openInChromium(PAGE, Scheme::DARK).screenshot, SQUARE_COLOUR, DARK_GROUND);
}

TEST_F(GalleryTest, ADrawingCloseToItsGroundStandsOnAnother) {
    constexpr Rgb BLACK{0x00, 0x00, 0x01};
    flash.write("reticle/square.svg", SQUARE);
    startWith(
        R"([{"reticles":[{"index":0,"name":"N","data":"square.svg","userColor":"#000001","isDeletable":true,"isActive":false}]}])");
    expectSquareOn(openGallery("dark").screenshot, BLACK, LIGHT_GROUND);
    expectSquareOn(openGallery("grey").screenshot, BLACK, GREY_GROUND);
}

/// Says of each page that is shown as narrow as a telephone what is too wide or breaks its line.
constexpr auto INSPECTION = R"html(<script>onload = () => {
    for (const telephone of document.querySelectorAll('iframe')) {
        const page = telephone.contentDocument;
        const width = telephone.clientWidth;
        const faults = page.documentElement.scrollWidth > width ? ['page is too wide'] : [];
        const texts = page.querySelectorAll('label, h1, h2, .summary, .index, .colour, .facts > span, .badge, .foot a');
        for (const element of texts) {
            const range = page.createRange();
            range.selectNodeContents(element.lastChild);
            if (range.getClientRects().length !== 1) faults.push(element.textContent + ' breaks');
        }
        document.body.append(`${width} pixels, ${texts.length} texts, faults: ${faults.join() || 'none'}.`);
    }
};</script>)html";

std::string asAttribute(const std::string& html) {
    std::string value;
    for (const char character : html) {
        switch (character) {
            case '&':
                value += "&amp;";
                break;
            case '"':
                value += "&quot;";
                break;
            default:
                value += character;
        }
    }
    return value;
}

/// A page within a page.
std::string shownOn(const char* width, const std::string& html) {
    return std::string("<iframe style=\"border:0\" width=\"") + width + "\" srcdoc=\"" +
           asAttribute(html) + "\"></iframe>";
}

TEST_F(GalleryTest, NothingBreaksOnATelephone) {
    flash.write("notes", "notes");
    simulator.emplace();
    service.emplace();
    service->waitUntilListening();
    ASSERT_EQ(Reticlectl::run({"add", "Notes", "/tmp/FL0/notes"}).status, Reticlectl::DONE);
    ASSERT_EQ(Reticlectl::run({"gallery", "--output", PAGE}).status, Reticlectl::DONE);
    const std::string page = contentOfFile(PAGE);
    flash.write("telephones.html",
                "<!DOCTYPE html>" + shownOn("320", page) + shownOn("360", page) + INSPECTION);
    const std::string dom = openInChromium("/tmp/FL0/telephones.html").dom;
    expectPart(dom, "320 pixels, 53 texts, faults: none.");
    expectPart(dom, "360 pixels, 53 texts, faults: none.");
}

TEST_F(GalleryTest, HostilePicturesAndNamesDoNothing) {
    flash.write("reticle/hostile.svg", HOSTILE);
    flash.write("reticle/colour.svg",
                R"(<svg viewBox="0 0 9 9"><path fill="user_color" d="M0 0h9v9z"/></svg>)");
    flash.write("reticle/text", "<script>document.title='owned'</script>");
    flash.write("blue.svg", BLUE);
    flash.write("blue.css", "rect { fill: #0102fe }");
    startWith(HOSTILE_LIST);

    const OpenedPage page = openGallery("grey");
    EXPECT_EQ(countOf("<article", page.dom), 3U);
    expectPart(page.dom, "<title>Reticles on 127.0.0.1:3451</title>");
    expectPart(page.dom, "<img alt=\"Picture of &quot;&gt;");
    expectPart(page.dom, "<h2 dir=\"auto\">\"&gt;&lt;img src=x onerror=");
    expectPart(page.dom,
               "<h2 dir=\"auto\">&lt;script&gt;document.title='owned'&lt;/script&gt;</h2>");
    expectPart(page.dom, "<h2 dir=\"auto\">&lt;/title&gt;&lt;svg onload=");
    expectPart(page.dom, "<pre>&lt;script&gt;document.title='owned'&lt;/script&gt;</pre>");
    expectSquareOn(page.screenshot, HARMLESS_COLOUR, GREY_GROUND);
    EXPECT_EQ(page.screenshot.count(SCRIPT_COLOUR), 0U);
    EXPECT_EQ(page.screenshot.count(LOADED_COLOUR), 0U);

    // The same picture is not harmless where a browser trusts it: the test can tell.
    const OpenedPage trusted = openInChromium("/tmp/FL0/reticle/hostile.svg");
    EXPECT_GT(trusted.screenshot.count(SCRIPT_COLOUR) + trusted.screenshot.count(LOADED_COLOUR),
              0U);
}

/// Parts of which each repeats the one before ten times: more shapes than any browser ever draws.
std::string drawingOf(const std::string& part, const std::string& link, const std::string& end) {
    constexpr int PARTS = 12;
    std::string content = R"(<rect width="9" height="9"/>)";
    std::string svg = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 9 9">)";
    for (int number = 0; number < PARTS; ++number) {
        const std::string name = "p" + std::to_string(number);
        svg += "<" + part + " id=\"" + name + "\">" + content + "</" + part + ">";
        content = repeated(link + name + end, 10);
    }
    return svg + content + "</svg>";
}

TEST_F(GalleryTest, PicturesThatNeverEndHoldUpNothing) {
    flash.write("reticle/uses.svg", drawingOf("g", R"(<use href="#)", R"("/>)"));
    flash.write("reticle/masks.svg",
                drawingOf("mask", R"(<rect width="9" height="9" mask="url(#)", R"x()"/>)x"));
    flash.write("reticle/square.svg", SQUARE);
    const auto entry = [](int index, const std::string& file) {
        return R"({"index":)" + std::to_string(index) + R"(,"name":"N","data":")" + file +
               R"(","userColor":"#1264fe","isDeletable":true,"isActive":false})";
    };
    constexpr int CARDS = 29;
    std::string list = R"([{"reticles":[)" + entry(0, "uses.svg");
    for (int index = 1; index < CARDS; ++index) {
        list += "," + entry(index, "square.svg");
    }
    startWith(list + "," + entry(CARDS, "masks.svg") + "]}]");

    const OpenedPage page = openGallery("light");
    EXPECT_EQ(countOf("<article", page.dom), CARDS + 1U);
    expectPart(page.dom, "<pre>not drawn: it repeats parts that repeat others</pre>");
    expectSquareOn(page.screenshot, SQUARE_COLOUR, LIGHT_GROUND);
}

}  // namespace
