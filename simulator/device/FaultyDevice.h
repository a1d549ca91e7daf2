#pragma once

#include <cstddef>
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
    /// \param device, storage outlive this object; `storage` is that of the device
    FaultyDevice(Device& device, Storage& storage, const std::vector<Fault>& faults);

    /// One exchange. A request that is malformed, or that the storage fails, is answered with
    /// UNKNOWN_ACTION and a reason. Never throws.
    [[nodiscard]] Delivery exchange(const std::string& request);

    /// Lets `fault` happen besides those that are armed; in the place of one of its kind on the same
    /// exchange.
    void arm(const Fault& fault);

    /// Lets nothing go wrong any more.
    void disarm() { _faults.clear(); }

    /// What can still hit an exchange, in the order of effect.
    [[nodiscard]] const std::vector<Fault>& faults() const { return _faults; }

    /// Exchanges so far.
    [[nodiscard]] std::size_t count() const { return _count; }

private:
    [[nodiscard]] Answer _answer(const std::string& request, std::vector<Fault>& faults);
    [[nodiscard]] Answer _decide(const std::string& request, const std::vector<Fault>& faults);
    void _spoilList(Answer& answer, const Fault& fault);

    Device& _device;
    Storage& _storage;
    std::vector<Fault> _faults;
    std::size_t _count = 0;
};

}  // namespace sim
