#pragma once

#include <json/value.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace reticled {

/// Builds the reply to a client: "result", the name of the RTOS's verdict, and "reticles", the list
/// after the command. Worker thread only.
///
/// Calls for one reply, in order: reset, setResult for each answer of the RTOS, fillReticles when
/// all were accepted, finish, getResponse.
class JsonNetBuilder {
public:
    /// Starts an empty reply.
    void reset();

    /// Names the "ret_val" of an RTOS answer under "result"; "" for a code that has no name.
    /// \param answer JSON; its last entry decides, an entry without "ret_val" counts as 0.
    /// \return whether "ret_val" is 0.
    [[nodiscard]] bool setResult(const std::string& answer);

    /// Sets "reticles" from the list file that an RTOS list answer names under "param" and from the
    /// reticle files that the list names.
    ///
    /// Entries that cannot be used are left out; problems are written to std::cerr. With no usable
    /// entry "reticles" is null, not an empty array, on purpose.
    /// \param answer JSON or empty.
    /// \throws Json::Exception on nesting that the parser refuses; std::bad_alloc.
    void fillReticles(const std::string& answer);

    /// Ends the building.
    void finish();

    /// The reply as JSON text. Gives up the reply's values, so call it once, last.
    [[nodiscard]] std::string getResponse();

private:
    friend struct JsonNetBuilderTestPeer;

    // With fillReticles in reticles/JsonNetBuilderList.cpp, as they know the shared storage.
    [[nodiscard]] static Json::Value _makeRecords(const std::string& answer);
    [[nodiscard]] static std::string _getReticlesList(const std::string& answer);
    [[nodiscard]] static std::optional<Json::Value> _makeRecord(Json::Value& entry);
    // In reticles/JsonNetBuilderData.cpp.
    [[nodiscard]] static std::string _getReticleData(const std::string& fileName,
                                                     const std::string& userColor);
    [[nodiscard]] static std::string _applyUserColor(std::string_view text,
                                                     const std::string& userColor);

    std::atomic<std::int32_t> _isBusy{0};  ///< 1 from reset to finish, written only
    Json::Value _response;
};

}  // namespace reticled
