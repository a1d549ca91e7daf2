#pragma once

#include <string>
#include <vector>

#include "commands/JsonRtosBuilder.h"
#include "processing/JsonRetriever.h"

namespace reticled {

/// Builds one RTOS request per reticle to add or to update. The reticles' data travels in files on
/// the shared storage that the requests name.
class JsonRtosBuilderAddOrUpdate final : public JsonRtosBuilder {
public:
    JsonRtosBuilderAddOrUpdate() = default;
    JsonRtosBuilderAddOrUpdate(const JsonRtosBuilderAddOrUpdate&) = delete;
    JsonRtosBuilderAddOrUpdate& operator=(const JsonRtosBuilderAddOrUpdate&) = delete;

    /// Removes the data files still on record.
    ~JsonRtosBuilderAddOrUpdate() override;

    /// Keeps the data files on record, so that those of a command that failed are not overwritten
    /// before they are removed.
    void reset();

    /// Takes the "reticles" of the client's request in their order: those with a negative "index"
    /// or none are added, the others updated. Writes each one's data file. Records that cannot be
    /// read are left out; without any, no message is built.
    void build(const std::string& request);

    /// Gives up the messages, which may be many, so call it once.
    [[nodiscard]] std::vector<std::string> getRequests();

    /// Removes the data files on record, those of earlier failed commands too. Call it when the
    /// RTOS has answered for the last time.
    void removeDataFiles();

private:
    friend struct JsonRtosBuilderAddOrUpdateTestPeer;

    [[nodiscard]] Json::Value _makeMessage(const ReticleRecord& record);

    // With removeDataFiles in reticles/JsonRtosBuilderAddOrUpdateData.cpp, as they know the shared storage.
    /// Writes `data` to the next numbered file. A file that cannot be written is recorded and named
    /// all the same: the RTOS's answer tells. \return the file's path as the RTOS sees it.
    [[nodiscard]] std::string _saveReticleData(const std::string& data);

    std::vector<Json::Value> _requests;
    std::vector<std::string> _dataFiles;  ///< paths written and not yet removed; their number is
                                          ///< the next file's number
};

}  // namespace reticled
