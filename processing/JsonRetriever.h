#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/SingleInstance.h"
#include "processing/Vocabulary.h"

namespace reticled {

/// Bytes 0x00, 0x01, ... 0x1F at the start of every client frame.
inline constexpr int FRAME_SYNC_SIZE = 32;
/// The sync bytes and the body length, 4 bytes, most significant first.
inline constexpr int FRAME_HEADER_SIZE = 36;

/// One reticle as a client sends it for adding or updating.
struct ReticleRecord {
    int index;  ///< the reticle to replace; negative for a new one, -1 when the client gave none
    std::string name;  ///< shown to the user
    std::string data;  ///< the reticle's content, passed on byte for byte
};

/// Takes typed values out of the JSON texts of clients and of the RTOS, reads and builds client
/// frames, and looks up the vocabulary's texts.
///
/// Stateless: every getter parses its text afresh. isJson and the three frame operations may be called
/// from any thread; the others belong to the worker, as a lookup may add to the tables.
class JsonRetriever : public SingleInstance<JsonRetriever> {
public:
    /// Whether `text` is JSON; comments are allowed. What the parser throws, for a lack of memory too,
    /// is written to std::cerr and counts as no.
    [[nodiscard]] static bool isJson(const std::string& text);

    /// The integer under `key` of the object `text`; 0 when it is missing or null.
    /// \throws std::runtime_error "getIntVal: json msg is empty" on an empty text,
    ///         Json::Exception when the value is no 32-bit integer or `text` no object.
    [[nodiscard]] static int getIntVal(const std::string& text, const JsonKey& key);

    /// The string under `key` of the object `text`.
    /// \throws std::runtime_error "getStrVal: json msg is empty" on an empty text,
    ///         Json::Exception when there is no string under `key` or `text` is no object.
    [[nodiscard]] static std::string getStrVal(const std::string& text, const JsonKey& key);

    /// The value under `key` of the last entry of the array or object `text` that has a convertible
    /// one; an entry without the member, or one that is null, counts as 0 for int. Never throws for
    /// bad content: it writes a message to std::cerr for each entry that it cannot use, and for a text
    /// that it cannot; an empty text gets none.
    /// \tparam T int or std::string.
    /// \return -1 (no result code of the RTOS) or "" when no entry had a value.
    template <class T>
    [[nodiscard]] static T getVal(const std::string& text, const JsonKey& key);

    /// The integers in the list under `key` of the object `text`, in order. Never throws for bad
    /// content: entries that are no integers are left out, each with a message on std::cerr.
    [[nodiscard]] static std::vector<int> getIntVector(const std::string& text, const JsonKey& key);

    /// The records in the list under `key` of the object `text`, in order. Never throws for bad
    /// content: entries without a string "name" and "data", or with an "index" that is no integer,
    /// are left out, each with a message on std::cerr.
    [[nodiscard]] static std::vector<ReticleRecord> getReticleRecords(const std::string& text,
                                                                      const JsonKey& key);

    /// The text of a key, "" for an unknown number.
    [[nodiscard]] static std::string keyName(const JsonKey& key);

    /// The text of a result, "" for a code that has none.
    [[nodiscard]] static std::string resultName(const ResultCode& code);

    /// The body length that a frame header announces.
    /// \param header FRAME_HEADER_SIZE bytes.
    /// \return 0 when the sync bytes are wrong; negative for lengths of 2 GiB and more.
    [[nodiscard]] static int getPacketLength(const std::uint8_t* header);

    /// The header of the client frame for a body of `bodySize` bytes, counted with 32 bits.
    [[nodiscard]] static std::array<std::uint8_t, FRAME_HEADER_SIZE> buildNetHeader(
        std::size_t bodySize);

    /// The client frame for `body`, header and body in one piece.
    [[nodiscard]] static std::vector<std::uint8_t> buildNetPacket(const std::string& body);
};

}  // namespace reticled
