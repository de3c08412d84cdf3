#pragma once

#include <fstream>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"
#include "support/Simulator.h"

namespace Korvel::Torture {

/// A shallow copy that frees nothing of what it shares.
template <typename Object>
union Shallow {
    Object object;
    explicit Shallow(const Object& source) : object(source) {}
    ~Shallow();
};

/// Everything the calls reach: a layer that holds one array, an array that knows two of its three volumes and its
/// server, and what the calls hand out.
struct Scene {
    Scene(const std::string& arrayAddress, const std::string& arrayKey);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// @return what the objects hold, as text without generated numbers
    std::string Known() const;

    /// @return what was handed out
    std::string Given() const;

    std::string address;
    std::string key;
    KAccessLayer layer;
    KArray array;
    KVolume* volume;  ///< the first one the array knows
    KConnection* connection = nullptr;
    Shallow<KAccessLayer> layerCopy;  ///< of empty ones, to assign to
    Shallow<KArray> arrayCopy;
    Shallow<KVolume> volumeCopy;

    KVolume* found = nullptr;
    std::string* own = nullptr;
    std::string texts[3] = {"old", "old", "old"};
    std::list<std::string> names;
    std::list<KArray*> arrays;
    std::list<KVolumeRecord> volumeRecords;
    std::list<KSnapshotRecord> snapshotRecords;
};

/// What comes of one request of a call.
struct Request {
    const char* refusal;  ///< the exception's text for an HTTP status other than 200, which it has for %ld
    const char* nothing;  ///< the call's outcome when the reply holds nothing it looks for
    bool command;         ///< whether the array can refuse it
};

/// A call that a caller or a request makes.
struct Call {
    const char* name;
    int (*run)(Scene&);
    std::vector<Request> requests = {};
    bool partStays = false;  ///< what was handed out before an exception stays
    int failure = -1;        ///< the status that stands for an exception
};

/// @return every public call and every reader
const std::vector<Call>& Calls();

/// The two that prepare and clear the process; they go with a process of their own.
const std::vector<Call>& ProcessCalls();

/// A call that has to work after any other: asks the array for a volume.
int NextCall(Scene& scene);

/// @return what an array holds for the calls, made of what an array of three volumes with snapshots holds at start
nlohmann::json Inventory(nlohmann::json state);

/// @return whether all is to be tried and not only a part: KORVEL_TORTURE is "whole"
bool Whole();

/// @return a file for rows of figures in the folder that KORVEL_TORTURE_FIGURES names; without it one that is not open
std::ofstream Figures(const std::string& name);

}  // namespace Korvel::Torture
