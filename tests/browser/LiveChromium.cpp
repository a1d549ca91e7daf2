#include "tests/browser/LiveChromium.h"

#include <fcntl.h>
#include <json/reader.h>
#include <json/writer.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/support/Patience.h"

namespace {

/// A pair of descriptors that programs which we start inherit.
std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe to the browser");
    }
    return ends;
}

FileDescriptor kept(int descriptor) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    return {descriptor, "pipe to the browser"};
}

Json::Value parse(const std::string& text) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    if (!reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) {
        throw std::runtime_error("the browser says what is no JSON: " + text);
    }
    return value;
}

std::string asText(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return value.isString() ? value.asString() : Json::writeString(builder, value);
}

std::string fromBase64(const std::string& text) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr unsigned BITS_OF_DIGIT = 6;
    constexpr unsigned BITS_OF_BYTE = 8;
    std::string bytes;
    unsigned bits = 0;
    unsigned count = 0;
    for (const char digit : text.substr(0, text.find('='))) {
        bits = (bits << BITS_OF_DIGIT) | static_cast<unsigned>(alphabet.find(digit));
        count += BITS_OF_DIGIT;
        if (count >= BITS_OF_BYTE) {
            count -= BITS_OF_BYTE;
            bytes += static_cast<char>(bits >> count);
        }
    }
    return bytes;
}

}  // namespace

LiveChromium::LiveChromium(Scheme scheme) : _browser(_start(scheme)) {
    Json::Value page;
    page["url"] = "about:blank";
    Json::Value target;
    target["targetId"] = _call("Target.createTarget", page)["targetId"];
    target["flatten"] = true;
    _session = _call("Target.attachToTarget", target)["sessionId"].asString();
}

Process LiveChromium::_start(Scheme scheme) {
    const std::array<int, 2> requests = makePipe();
    const std::array<int, 2> answers = makePipe();
    _ours = {kept(answers[0]), kept(requests[1])};
    const FileDescriptor theirRead(requests[0], "pipe");
    const FileDescriptor theirWrite(answers[1], "pipe");
    // It takes calls on descriptor 3 and answers on 4.
    std::vector<std::string> command{
        "bash", "-c",
        "exec \"$@\" 3<&" + std::to_string(requests[0]) + " 4>&" + std::to_string(answers[1]),
        "bash"};
    const std::vector<std::string> chromium = chromiumCommand(_scratch.path() + "/profile", scheme);
    command.insert(command.end(), chromium.begin(), chromium.end());
    command.emplace_back("--remote-debugging-pipe");
    return Process(command);
}

void LiveChromium::open(const std::string& url) {
    Json::Value parameters;
    parameters["url"] = url;
    _call("Page.navigate", parameters);
}

std::string LiveChromium::evaluate(const std::string& expression) {
    Json::Value parameters;
    parameters["expression"] = expression;
    parameters["awaitPromise"] = true;
    parameters["returnByValue"] = true;
    // As a click of the reader.
    parameters["userGesture"] = true;
    const Json::Value answer = _call("Runtime.evaluate", parameters);
    if (answer.isMember("exceptionDetails")) {
        throw std::runtime_error(asText(answer["exceptionDetails"]));
    }
    return asText(answer["result"]["value"]);
}

bool LiveChromium::sees(const std::string& expression) {
    return eventually([this, &expression] {
        try {
            return evaluate(expression) == "true";
        } catch (const std::runtime_error&) {
            return false;
        }
    });
}

void LiveChromium::click(const std::string& selector) {
    static_cast<void>(
        evaluate("window.isClicked = false; document.addEventListener('click', (event) => {"
                 "window.isClicked ||= event.target.closest('" +
                 selector + "') !== null; }, {capture: true})"));
    // What comes into the page meanwhile may move what is to be clicked.
    if (!eventually(
            [&] { return _clickOnce(selector) && evaluate("window.isClicked") == "true"; })) {
        throw std::runtime_error("cannot be clicked: " + selector);
    }
}

bool LiveChromium::_clickOnce(const std::string& selector) {
    const Json::Value middle =
        parse(evaluate("(() => { const element = document.querySelector('" + selector +
                       "'); element.scrollIntoView({behavior: 'instant', block: 'center'});"
                       "const box = element.getBoundingClientRect();"
                       "const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];"
                       "return JSON.stringify(element.contains(document.elementFromPoint(x, y)) ? "
                       "[x, y] : []); })()"));
    if (middle.empty()) {
        return false;
    }
    for (const char* type : {"mousePressed", "mouseReleased"}) {
        Json::Value parameters;
        parameters["type"] = type;
        parameters["x"] = middle[0];
        parameters["y"] = middle[1];
        parameters["button"] = "left";
        parameters["clickCount"] = 1;
        _call("Input.dispatchMouseEvent", parameters);
    }
    return true;
}

void LiveChromium::press(const std::string& key, int code, const std::string& text) {
    for (const char* type : {"keyDown", "keyUp"}) {
        Json::Value parameters;
        parameters["type"] = type;
        parameters["key"] = key;
        parameters["windowsVirtualKeyCode"] = code;
        if (type == std::string("keyDown") && !text.empty()) {
            parameters["text"] = text;
        }
        _call("Input.dispatchKeyEvent", parameters);
    }
}

Screenshot LiveChromium::screenshot(const std::string& selector) {
    const Json::Value box = parse(evaluate("JSON.stringify(document.querySelector('" + selector +
                                           "').getBoundingClientRect())"));
    Json::Value parameters;
    for (const char* key : {"x", "y", "width", "height"}) {
        parameters["clip"][key] = box[key];
    }
    parameters["clip"]["scale"] = 1;
    return Screenshot(fromBase64(_call("Page.captureScreenshot", parameters)["data"].asString()));
}

void LiveChromium::emulate(const std::string& feature, const std::string& value) {
    Json::Value parameters;
    parameters["features"][0]["name"] = feature;
    parameters["features"][0]["value"] = value;
    _call("Emulation.setEmulatedMedia", parameters);
}

void LiveChromium::resize(int width, int height) {
    Json::Value parameters;
    parameters["width"] = width;
    parameters["height"] = height;
    parameters["deviceScaleFactor"] = 1;
    parameters["mobile"] = false;
    _call("Emulation.setDeviceMetricsOverride", parameters);
}

Json::Value LiveChromium::_call(const std::string& method, const Json::Value& parameters) {
    Json::Value call;
    call["id"] = ++_calls;
    call["method"] = method;
    call["params"] = parameters;
    if (!_session.empty()) {
        call["sessionId"] = _session;
    }
    const std::string text = asText(call) + '\0';
    if (write(_ours.write.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("the browser takes nothing");
    }
    for (;;) {
        const Json::Value message = _nextMessage();
        if (message["id"] == _calls) {
            if (message.isMember("error")) {
                throw std::runtime_error(method + ": " + asText(message["error"]));
            }
            return message["result"];
        }
    }
}

Json::Value LiveChromium::_nextMessage() {
    constexpr std::size_t CHUNK_BYTES = 65536;
    const std::chrono::milliseconds bound = 4 * PATIENCE;
    std::size_t end = 0;
    while ((end = _received.find('\0')) == std::string::npos) {
        pollfd readable{_ours.read.get(), POLLIN, 0};
        std::array<char, CHUNK_BYTES> chunk{};
        const bool isReady = poll(&readable, 1, static_cast<int>(bound.count())) > 0;
        const ssize_t count = isReady ? read(_ours.read.get(), chunk.data(), chunk.size()) : 0;
        if (count <= 0) {
            throw std::runtime_error("chromium says nothing: " + _browser.standardError());
        }
        _received.append(chunk.data(), static_cast<std::size_t>(count));
    }
    Json::Value message = parse(_received.substr(0, end));
    _received.erase(0, end + 1);
    return message;
}
