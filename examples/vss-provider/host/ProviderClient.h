#pragma once

#include <windows.h>

#include <vss.h>

#include <vsprov.h>

#include <memory>
#include <string>
#include <vector>

namespace VssExample {

/// A hardware provider as the VSS service holds it: one object of its registered class, with the interfaces that the
/// service asks for. LUNs are named by their IEEE identifiers and made into what the service hands over.
class ProviderClient {
public:
    using Ids = std::vector<std::string>;

    /// Registers a provider's library, as regsvr32 does.
    /// @throws std::runtime_error when it cannot be loaded or refuses
    static void Register(const std::string& path);

    /// Makes an object of the registered class.
    /// @throws std::runtime_error when there is no such class or it lacks an interface
    ProviderClient();
    ~ProviderClient();
    ProviderClient(const ProviderClient&) = delete;
    ProviderClient& operator=(const ProviderClient&) = delete;

    HRESULT OnLoad();
    HRESULT OnUnload(bool forced);
    HRESULT AreLunsSupported(const Ids& ids, bool& supported);
    HRESULT BeginPrepareSnapshot(const GUID& set, const GUID& snapshot, const Ids& ids);
    HRESULT GetTargetLuns(const Ids& sources, Ids& targets);
    HRESULT LocateLuns(const Ids& targets);
    HRESULT OnLunEmpty(const std::string& target);

    /// The calls that take a snapshot set and nothing else.
    IVssProviderCreateSnapshotSet& Sets() { return *sets; }

private:
    template <typename Interface>
    struct Releaser {
        void operator()(Interface* object) const noexcept { object->Release(); }
    };
    template <typename Interface>
    using Held = std::unique_ptr<Interface, Releaser<Interface>>;

    template <typename Interface>
    Held<Interface> Query() const;

    Held<IVssHardwareSnapshotProvider> provider;
    Held<IVssProviderCreateSnapshotSet> sets;
    Held<IVssProviderNotifications> notifications;
};

}  // namespace VssExample
