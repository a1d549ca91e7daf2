#pragma once

#include <json/value.h>

#include <string>

#include "tests/browser/Chromium.h"
#include "tests/browser/ScratchDirectory.h"
#include "tests/support/FileDescriptor.h"
#include "tests/system/Process.h"

/// A browser that stays open, and does what a reader would. Ends with this object.
///
/// All operations throw std::runtime_error when the browser does not answer.
class LiveChromium {
public:
    explicit LiveChromium(Scheme scheme = Scheme::LIGHT);

    /// Begins to load `url`.
    void open(const std::string& url);

    /// What the JavaScript expression gives, promises awaited, as text.
    /// \throws std::runtime_error with its text when it fails.
    [[nodiscard]] std::string evaluate(const std::string& expression);

    /// Waits until the expression, which may fail meanwhile, is true. \return whether it is.
    [[nodiscard]] bool sees(const std::string& expression);

    /// Clicks the middle of the first element of that CSS selector, after scrolling there, once nothing covers it.
    /// \throws std::runtime_error when it cannot be reached within PATIENCE.
    void click(const std::string& selector);

    /// Presses and releases a key, such as "Tab", on what has the focus.
    void press(const std::string& key, int code, const std::string& text = {});

    /// The part of the page that the first element of that CSS selector takes.
    [[nodiscard]] Screenshot screenshot(const std::string& selector);

    /// Has pages believe that the reader prefers this, for a media feature such as "prefers-reduced-motion".
    void emulate(const std::string& feature, const std::string& value);

    /// Shows pages so wide from now on.
    void resize(int width, int height);

private:
    /// The ends of a pair of pipes, as one end of a conversation has them.
    struct Ends {
        FileDescriptor read;
        FileDescriptor write;
    };

    [[nodiscard]] Process _start(Scheme scheme);
    /// \return whether the mouse could reach it.
    bool _clickOnce(const std::string& selector);
    Json::Value _call(const std::string& method, const Json::Value& parameters);
    [[nodiscard]] Json::Value _nextMessage();

    ScratchDirectory _scratch;
    Ends _ours;
    Process _browser;
    std::string _received;
    std::string _session;
    int _calls = 0;
};
