#pragma once

#include <list>
#include <string>

namespace Bench {

/// The same work written straight on libcurl and libxml2, with no more than it takes: what the library is measured by.

/// One volume, with the fields that the library reads.
struct Volume {
    std::string productId;
    std::string name;
    std::string displayName;
    std::string ieeeId;
    std::string group;
};

/// Reads a volume listing as the library does: the whole document as a tree.
std::list<Volume> ReadAsTree(const std::string& reply);

/// Reads it piece by piece, which keeps no tree.
std::list<Volume> ReadAsStream(const std::string& reply);

/// @return the names in a listing of snapshots
std::list<std::string> ReadSnapshots(const std::string& reply);

/// Makes one request on a connection of its own, with the library's settings.
/// @param body of a POST; null for another method
std::string Request(const std::string& url, const std::string& key, const char* method, const std::string* body);

/// @return a listing of so many volumes, as arrays write it
std::string Listing(long volumes);

}  // namespace Bench
