#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "simulator/device/Answer.h"
#include "simulator/device/Device.h"
#include "simulator/device/Fault.h"
#include "simulator/device/Storage.h"
#include "simulator/link/Delivery.h"

namespace sim {

/// A device with faults: counts the exchanges of the run, has the device answer each and spoils
/// what the faults of that exchange spoil.
///
/// Of the faults only "refuse" keeps a request from being carried out; all others spoil the answer
/// to a request that was carried out. Faults that hit the same exchange add up; where two
/// contradict each other the one further down in FaultKind wins. One thread.
class FaultyDevice {
public:
    /// \param device, storage, log outlive this object; `storage` is that of the device
    /// \param log where requests that make no sense are reported
    /// \param isVerbose whether `log` gets every exchange
    FaultyDevice(Device& device, Storage& storage, std::vector<Fault> faults, std::ostream& log,
                 bool isVerbose);

    /// One exchange. A request that is malformed, or that the storage fails, is answered with
    /// UNKNOWN_ACTION and gets a line on the log. Never throws.
    [[nodiscard]] Delivery exchange(const std::string& request);

private:
    [[nodiscard]] Answer _answer(const std::string& request, const std::vector<Fault>& faults);
    void _spoilList(Answer& answer, const Fault& fault);
    void _tell(const std::string& request, const Answer& answer, const Delivery& delivery);

    Device& _device;
    Storage& _storage;
    std::vector<Fault> _faults;
    std::ostream& _log;
    bool _isVerbose;
    std::size_t _count = 0;  ///< exchanges so far
};

}  // namespace sim
