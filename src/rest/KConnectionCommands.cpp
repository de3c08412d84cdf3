#include <algorithm>
#include <list>
#include <string>

#include "foundation/KBoundedText.h"
#include "foundation/KErrorHandling.h"
#include "foundation/KException.h"
#include "foundation/KGeneratedNumber.h"
#include "foundation/KLog.h"
#include "foundation/KStatus.h"
#include "foundation/KText.h"
#include "rest/KCommand.h"
#include "rest/KConnection.h"
#include "rest/KRequest.h"
#include "xml/CommandResponse.h"
#include "xml/KCommandAction.h"

namespace Korvel {

namespace {

bool HasText(const std::string* text) {
    return text != nullptr && !text->empty();
}

/// The volumes as the entry line shows them: each name with a blank behind it.
std::string VolumesText(const std::list<std::string*>& volNames) {
    std::string text;
    for (const std::string* volName : volNames) {
        if (volName != nullptr) {  // refused below, if it has a partner
            text += *volName;
            text += ' ';
        }
    }
    return text;
}

/// The body of a snapshot set: a generated snapshot name and the group for every pair. What has no partner in the other
/// list is ignored. Kept: surplus-names.
std::string SnapshotSetBody(const std::list<std::string*>& volNames, const std::list<std::string*>& cgNames,
                            const char* invalidArgument) {
    std::string body;
    int number = 1;
    auto cgName = cgNames.begin();
    for (auto volName = volNames.begin(); volName != volNames.end() && cgName != cgNames.end(); ++volName, ++cgName) {
        RequireArgument(HasText(*volName) && HasText(*cgName), invalidArgument);
        const std::string drawn = std::to_string(DrawNameNumber());
        const std::string key = "snapshots_set_" + std::to_string(number);
        if (number > 1) {
            body += '&';
        }
        body.append(key).append("_name=snap_").append(drawn).append("_").append(**volName);
        body.append("&").append(key).append("_cg=").append(**cgName);
        ++number;
    }
    return body;
}

}  // namespace

/// The part that all commands share: sends the request, reads the answer and judges it.
int KConnection::Exchange(KCommandAction action, std::initializer_list<const std::string*> arguments,
                          CommandResponse& response) {
    const KCommand& command = CommandOf(action);
    const KRequestText path(command.path, *arguments.begin()[command.pathArgument]);
    LogDetail("URL: %s", path.Text());
    const KRequest request = Prepare(path.Text());
    const std::string body = FillBody(command.body, arguments);
    request.SetCommand(command.method, command.body == nullptr ? nullptr : &body);
    std::string reply;
    request.Perform(reply, command.failureText);
    const int status = ParseResponseXML(reply, command.xPathID, action, response);
    if (status == KStatusSuccess && response.status != "0") {
        throw KException(response.statusMsg.c_str());
    }
    return status;
}

/// A command whose arguments are all texts.
/// @param name null, or what receives the response's name on success
int KConnection::RunCommand(KCommandAction action, std::initializer_list<const std::string*> arguments,
                            std::string* name) {
    const KCommand& command = CommandOf(action);
    LogTrace(command.entryLine, *arguments.begin()[command.entryArgument]);
    const int status = LogAndRethrow([&] {
        RequireArgument(std::all_of(arguments.begin(), arguments.end(), HasText), command.invalidArgument);
        CommandResponse response;
        const int judged = Exchange(action, arguments, response);
        if (judged == KStatusSuccess && name != nullptr) {
            name->swap(response.name);
        }
        return judged;
    });
    LogTrace(command.exitLine, status);
    return status;
}

int KConnection::CreateSnapshotSet(const std::list<std::string*>& volNames, const std::list<std::string*>& cgNames,
                                   std::list<std::string>* snapNames) {
    const KCommand& command = CommandOf(KCommandCreateSnapshotSet);
    LogTrace(command.entryLine, VolumesText(volNames));
    const int status = LogAndRethrow([&] {
        // This body alone ends at its first zero byte.
        const std::string body(UpToZero(SnapshotSetBody(volNames, cgNames, command.invalidArgument)));
        CommandResponse response;
        response.snapshotNames = snapNames;
        return Exchange(KCommandCreateSnapshotSet, {&body}, response);
    });
    LogTrace(command.exitLine, status);
    return status;
}

int KConnection::DeleteSnapshot(const std::string& snapID) {
    return RunCommand(KCommandDeleteSnapshot, {&snapID}, nullptr);
}

int KConnection::CloneVolume(const std::string& cgID, const std::string& snapID, const std::string& cloneName,
                             std::string& cgName) {
    return RunCommand(KCommandCloneVolume, {&cgID, &snapID, &cloneName}, &cgName);
}

int KConnection::DeleteVolume(const std::string& volName) {
    return RunCommand(KCommandDeleteVolume, {&volName}, nullptr);
}

int KConnection::ResyncVolume(const std::string& snapID, const std::string& cgID) {
    return RunCommand(KCommandResyncVolume, {&snapID, &cgID}, nullptr);
}

int KConnection::CreateServer(const std::string& displayName, const std::string& hostIQN, const std::string& iscsiIP,
                              std::string& serverID) {
    return RunCommand(KCommandCreateServer, {&displayName, &hostIQN, &iscsiIP}, &serverID);
}

int KConnection::AttachVolume(const std::string& volName, const std::string& serverID) {
    return RunCommand(KCommandAttachVolume, {&volName, &serverID}, nullptr);
}

int KConnection::DetachVolume(const std::string& volName, const std::string& serverID) {
    return RunCommand(KCommandDetachVolume, {&volName, &serverID}, nullptr);
}

}  // namespace Korvel
