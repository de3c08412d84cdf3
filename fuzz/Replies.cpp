// The readers of an array's replies. The first byte of the input chooses the reader, the rest is the reply.

#include <libxml/xmlerror.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <stdexcept>
#include <string>
#include <utility>

#include "Logger.h"
#include "Require.h"
#include "foundation/KException.h"
#include "rest/KConnection.h"

// The logging library of another maker is not what is tried here.
void Logger::Write(int /*level*/, char* /*module*/, char* /*format*/, ...) {}

namespace Korvel::Fuzz {
namespace {

// NOLINTNEXTLINE(cert-dcl50-cpp): libxml2's way
void KeepQuiet(void* /*context*/, const char* /*format*/, ...) {}

std::string ReadCommandReply(KConnection& reader, const std::string& reply, int action) {
    std::list<std::string> names;
    CommandResponse response;
    response.snapshotNames = &names;
    std::string all = std::to_string(reader.ParseResponseXML(reply, "//*[status]", action, response));
    names.insert(names.end(), {response.status, response.statusMsg, response.name});
    for (const std::string& name : names) {
        all += '\n' + name;
    }
    return all;
}

/// @return the reader's status and everything it has handed out
std::string Read(char choice, const std::string& reply) {
    KConnection reader("array", "key");
    std::string texts[3];
    std::list<KVolumeRecord> volumes;
    std::list<KSnapshotRecord> snapshots;
    int status = 0;
    switch (choice) {
        case 'v':
            status = reader.ParseVolumeList(reply, &volumes);
            break;
        case 'n':
            status = reader.ParseVolumeXMLByName(reply, "sql-data-1-0001", texts[0], texts[1], texts[2]);
            break;
        case 's':
            status = reader.ParseServerXMLByIQN(reply, "iqn.2011-03.example.korvel:host-0001", texts[0], texts[1]);
            break;
        case 'l':
            status = reader.ParseSnapshotList(reply, &snapshots);
            break;
        case 'd':
            status = KConnection::ParseDriveList(reply);
            break;
        default:
            return ReadCommandReply(reader, reply, choice - '0');
    }
    std::string all = std::to_string(status) + texts[0] + '\n' + texts[1] + '\n' + texts[2];
    for (const KVolumeRecord& volume : volumes) {
        all += '\n' + volume.productID + '\t' + volume.name + '\t' + volume.displayName + '\t' + volume.ieeeID + '\t' +
               volume.cgName;
    }
    for (const KSnapshotRecord& snapshot : snapshots) {
        all += '\n' + snapshot.name + '\t' + snapshot.displayName;
    }
    return all;
}

void Try(char choice, const std::string& reply) {
    std::string read;
    try {
        read = Read(choice, reply);
    } catch (const KException&) {
        return;
    } catch (const std::invalid_argument&) {
        return;
    }
    Require(Read(choice, reply) == read, "a reply says the same when it is read again");
}

}  // namespace
}  // namespace Korvel::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    xmlSetGenericErrorFunc(nullptr, Korvel::Fuzz::KeepQuiet);
    std::string input(reinterpret_cast<const char*>(data), size);
    const char choice = input.empty() ? 'v' : input.front();
    Korvel::Fuzz::Try(choice, input.substr(input.empty() ? 0 : 1));
    return 0;
}
