#include "tests/browser/Chromium.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "tests/support/Text.h"
#include "tests/system/Process.h"

namespace {

/// A browser is large; on a busy machine it takes its time.
constexpr std::chrono::minutes BROWSER_PATIENCE{4};

/// A directory that goes with this object.
class ScratchDirectory {
public:
    ScratchDirectory() {
        std::string pattern = "/tmp/chromium-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no directory for the browser");
        }
        _path = pattern;
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }

    [[nodiscard]] const std::string& path() const { return _path; }

private:
    std::string _path;
};

}  // namespace

OpenedPage openInChromium(const std::string& path, Scheme scheme) {
    const ScratchDirectory scratch;
    const std::string picture = scratch.path() + "/screenshot.png";
    // The browser's own sandbox needs what the tests' sandbox does not give, and the pages are ours.
    Process browser({"chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                     "--disable-dev-shm-usage", "--no-first-run", "--disable-background-networking",
                     "--disable-component-update", "--disable-sync", "--hide-scrollbars",
                     "--force-device-scale-factor=1", "--window-size=1000,1400",
                     "--user-data-dir=" + scratch.path() + "/profile", "--screenshot=" + picture,
                     std::string("--blink-settings=preferredColorScheme=") +
                         (scheme == Scheme::DARK ? "0" : "1"),
                     "--dump-dom", "file://" + path});
    if (browser.waitForEnd(BROWSER_PATIENCE) != EXIT_SUCCESS) {
        throw std::runtime_error("chromium does not end well: " + browser.standardError());
    }
    return {browser.standardOutput(), Screenshot(contentOfFile(picture))};
}
