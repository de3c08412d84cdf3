#include "array/Replies.h"

#include "array/ReplyWriter.h"

namespace Korvel::Sim {
namespace {

ReplyWriter Begin(const char* root, const char* status, const std::string& message) {
    ReplyWriter reply(root);
    reply.Element("status", status);
    reply.Element("status-msg", message);
    return reply;
}

ReplyWriter BeginDone(const char* root) {
    return Begin(root, "0", "Done");
}

}  // namespace

std::string Replies::Volumes(const std::vector<Inventory::Volume>& volumes) {
    ReplyWriter reply = BeginDone("show-volumes-response");
    reply.Begin("volumes");
    for (const auto& volume : volumes) {
        reply.Begin("volume");
        reply.Element("name", volume.name);
        reply.Element("display-name", volume.displayName);
        reply.Element("ieee-id", volume.ieeeId);
        reply.Element("product-id", volume.productId);
        reply.Element("cg-name", volume.group);
        for (const auto& server : volume.mappedTo) {
            reply.Element("mapped-to", server);
        }
        if (!volume.rolledBackTo.empty()) {
            reply.Element("rolled-back-to", volume.rolledBackTo);
        }
        reply.End();
    }
    return reply.Finish();
}

std::string Replies::Servers(const std::vector<Inventory::Server>& servers) {
    ReplyWriter reply = BeginDone("show-servers-response");
    reply.Begin("servers");
    for (const auto& server : servers) {
        reply.Begin("server");
        reply.Element("name", server.name);
        reply.Element("display-name", server.displayName);
        reply.Element("iqn", server.iqn);
        reply.Element("iscsi-ip", server.iscsiIp);
        reply.End();
    }
    return reply.Finish();
}

std::string Replies::Drives(const std::vector<Inventory::Drive>& drives) {
    ReplyWriter reply = BeginDone("show-disks-response");
    reply.Begin("disks");
    for (const auto& drive : drives) {
        reply.Begin("disk");
        reply.Element("name", drive.name);
        reply.Element("health", drive.health);
        reply.End();
    }
    return reply.Finish();
}

std::string Replies::Snapshots(const std::vector<Inventory::Snapshot>& snapshots) {
    ReplyWriter reply = BeginDone("show-snapshots-response");
    reply.Begin("snapshots");
    for (const auto& snapshot : snapshots) {
        reply.Begin("snapshot");
        reply.Element("name", snapshot.name);
        reply.Element("display-name", snapshot.displayName);
        reply.End();
    }
    return reply.Finish();
}

std::string Replies::Done(const char* element, const Outcome& outcome) {
    ReplyWriter reply = BeginDone(element);
    for (const auto& [kind, name] : outcome.names) {
        reply.Element(kind, name);
    }
    if (!outcome.snapshots.empty()) {
        reply.Begin("snapshots");
        for (const auto& snapshot : outcome.snapshots) {
            reply.Element("snapshot", snapshot);
        }
    }
    return reply.Finish();
}

std::string Replies::Refused(const char* element, const std::string& message) {
    return Begin(element, "1", message).Finish();
}

}  // namespace Korvel::Sim
