#include "tests/browser/Chromium.h"

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "tests/browser/ScratchDirectory.h"
#include "tests/support/Text.h"
#include "tests/system/Process.h"

namespace {

/// A browser is large; on a busy machine it takes its time.
constexpr std::chrono::minutes BROWSER_PATIENCE{4};

}  // namespace

std::vector<std::string> chromiumCommand(const std::string& profile, Scheme scheme) {
    // The browser's own sandbox needs what the tests' sandbox does not give, and the pages are ours.
    return {"chromium",
            "--headless",
            "--no-sandbox",
            "--disable-gpu",
            "--disable-quic",
            "--disable-dev-shm-usage",
            "--no-first-run",
            "--disable-background-networking",
            "--disable-component-update",
            "--disable-sync",
            "--hide-scrollbars",
            "--force-device-scale-factor=1",
            "--window-size=1000,1400",
            "--user-data-dir=" + profile,
            std::string("--blink-settings=preferredColorScheme=") +
                (scheme == Scheme::DARK ? "0" : "1")};
}

OpenedPage openInChromium(const std::string& path, Scheme scheme) {
    const ScratchDirectory scratch;
    const std::string picture = scratch.path() + "/screenshot.png";
    std::vector<std::string> command = chromiumCommand(scratch.path() + "/profile", scheme);
    command.insert(command.end(), {"--screenshot=" + picture, "--dump-dom", "file://" + path});
    Process browser(command);
    if (browser.waitForEnd(BROWSER_PATIENCE) != EXIT_SUCCESS) {
        throw std::runtime_error("chromium does not end well: " + browser.standardError());
    }
    return {browser.standardOutput(), Screenshot(contentOfFile(picture))};
}
