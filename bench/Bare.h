#pragma once

#include <curl/curl.h>

#include <list>
#include <memory>
#include <string>
#include <utility>

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

/// @return the names and the display names in a listing of snapshots
std::list<std::pair<std::string, std::string>> ReadSnapshots(const std::string& reply);

/// A libcurl handle, which keeps its connection as long as it lives.
using Handle = std::unique_ptr<CURL, void (*)(CURL*)>;
Handle NewHandle();

/// Makes one GET request with the library's settings.
std::string Request(const Handle& handle, const std::string& url, const std::string& key);

/// @return a listing of so many volumes, as arrays write it
std::string Listing(long volumes);

}  // namespace Bench
