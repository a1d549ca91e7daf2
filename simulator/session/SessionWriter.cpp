#include "simulator/session/SessionWriter.h"

#include "simulator/base/EscapedText.h"
#include "simulator/session/StepReader.h"

namespace sim {

namespace {

constexpr std::string_view NAMING_VERB = "file ";

void writeAnswer(std::ostream& output, const Delivery& answer) {
    if (answer.delay.count() > 0) {
        output << "rtos waits " << answer.delay.count() << " ms\n";
    }
    if (answer.gap) {
        output << "rtos pauses " << answer.gap->count() << " ms\n";
    }
    if (!answer.bytes.empty()) {
        writeStep(output, "rtos answers", answer.bytes);
    }
    switch (answer.end) {
        case Delivery::End::KEEP_OPEN:
            output << (answer.bytes.empty() ? "rtos answers nothing\n" : "");
            break;
        case Delivery::End::CLOSE:
            output << "rtos closes\n";
            break;
        case Delivery::End::RESET:
            output << "rtos resets\n";
            break;
    }
}

}  // namespace

void writeStep(std::ostream& output, const std::string& instruction, std::string_view text) {
    const bool isPlain = isPlainText(text);
    output << instruction << (instruction.starts_with(NAMING_VERB) ? ", " : " ") << text.size()
           << " bytes" << (isPlain ? "\n" : ", escaped\n");
    if (text.empty()) {
        return;
    }
    const std::string shown = isPlain ? std::string(text) : escaped(text);
    output << INDENTATION;
    for (const char character : shown) {
        output << character;
        if (character == '\n') {
            output << INDENTATION;
        }
    }
    output << '\n';
}

SessionWriter::SessionWriter(std::ostream& output) : _output(output) {
    _output << SESSION_HEAD << std::endl;
}

void SessionWriter::writeClientRequest(const std::string& text) {
    writeStep(_output, "client sends", text);
}

void SessionWriter::writeExchange(const Exchange& exchange) {
    writeStep(_output, "rtos receives", exchange.request);
    for (const SessionFile& file : exchange.newData) {
        writeStep(_output, "file exists " + file.name, file.text);
    }
    for (const SessionFile& file : exchange.files) {
        writeStep(_output, "file " + file.name, file.text);
    }
    writeAnswer(_output, exchange.answer);
    _output << std::flush;
}

void SessionWriter::write(const Session& session) {
    auto clientRequest = session.clientRequests.begin();
    const auto writeClientRequestsAt = [&](std::size_t position) {
        for (; clientRequest != session.clientRequests.end() &&
               clientRequest->exchangesBefore == position;
             ++clientRequest) {
            writeClientRequest(clientRequest->text);
        }
    };
    for (std::size_t position = 0; position < session.exchanges.size(); ++position) {
        writeClientRequestsAt(position);
        writeExchange(session.exchanges[position]);
    }
    writeClientRequestsAt(session.exchanges.size());
}

}  // namespace sim
