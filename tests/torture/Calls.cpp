#include "torture/Calls.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "model/KServer.h"
#include "model/KSnapshot.h"
#include "support/Outcome.h"

namespace Korvel::Torture {

namespace {

/// Shows a private member: an explicit instantiation may name what nobody else may.
template <auto Member, typename Object, typename Type>
struct Reveal {
    friend const Type& Held(const Object& object, const Type*) { return object.*Member; }
};
const std::list<KArray*>& Held(const KAccessLayer&, const std::list<KArray*>*);
const std::list<KVolume*>& Held(const KArray&, const std::list<KVolume*>*);
const std::list<KServer*>& Held(const KArray&, const std::list<KServer*>*);
const std::list<KSnapshot*>& Held(const KVolume&, const std::list<KSnapshot*>*);
template struct Reveal<&KAccessLayer::arrays, KAccessLayer, std::list<KArray*>>;
template struct Reveal<&KArray::volumeList, KArray, std::list<KVolume*>>;
template struct Reveal<&KArray::serverList, KArray, std::list<KServer*>>;
template struct Reveal<&KVolume::snapshotList, KVolume, std::list<KSnapshot*>>;

template <typename Element, typename Object>
std::list<Element>& List(const Object& object) {
    return const_cast<std::list<Element>&>(Held(object, static_cast<const std::list<Element>*>(nullptr)));
}

void Forget(KAccessLayer& layer) {
    List<KArray*>(layer).clear();
}

void Forget(KArray& array) {
    List<KVolume*>(array).clear();
    List<KServer*>(array).clear();
}

void Forget(KVolume& volume) {
    List<KSnapshot*>(volume).clear();
}

std::string Shown(KVolume& volume) {
    std::string* id = nullptr;
    std::string texts[4];
    volume.GetVolumeID(id);
    volume.GetVolumeName(texts[0]);
    volume.GetVolumeDispName(texts[1]);
    volume.GetCgID(texts[2]);
    volume.GetLatestSnapshotID(texts[3]);
    if (texts[1].ends_with(".clone")) {  // _N.clone, by the clock's second
        texts[1].resize(texts[1].rfind('_'));
    }
    std::string shown = *id;
    for (const std::string& text : texts) {
        shown += ',' + text;
    }
    for (const KSnapshot* snapshot : List<KSnapshot*>(volume)) {
        shown += '+' + *snapshot->snapshotID;
    }
    return shown + ';';
}

std::string Shown(const KArray& array) {
    std::string shown;
    for (KVolume* volume : List<KVolume*>(array)) {
        shown += Shown(*volume);
    }
    for (const KServer* server : List<KServer*>(array)) {
        shown += *server->serverID + ',' + *server->hostIQN + ',' + *server->iscsiIP + ';';
    }
    return shown;
}

std::string Shown(const std::list<KArray*>& arrays) {
    std::string shown;
    for (KArray* array : arrays) {
        std::string* address = nullptr;
        array->GetIPAddress(address);
        shown += *address + ';';
    }
    return shown;
}

constexpr const char* noAddress = "invalid_argument: KConnection::CreateServer - Invalid input argument";
constexpr const char* listVolumes = "HTTP return code: %ld. List volume failed";
constexpr const char* listSnapshots = "HTTP return code: %ld. List snapshot failed";

// Texts of several pieces, so that the pieces' joining can fail, too.
constexpr const char* volumes =
    "<r><volumes><volume><name>n1</name><display-name>d<![CDATA[<]]>1</display-name><ieee-id>i1</ieee-id>"
    "<product-id>p1-x</product-id><cg-name>g1</cg-name></volume><volume><name>n<![CDATA[&]]>2</name>"
    "<display-name>a display name<![CDATA[ of ]]>several pieces</display-name><ieee-id>i&lt;<![CDATA[2]]></ieee-id>"
    "<product-id>p<![CDATA[2]]>-x</product-id><cg-name>group<![CDATA[ of ]]>two</cg-name></volume></volumes></r>";
constexpr const char* servers =
    "<servers><server><name>s1</name><iqn>q1</iqn><iscsi-ip>a1</iscsi-ip></server><server>"
    "<name>s<![CDATA[&]]>2</name><iqn>q<![CDATA[2]]>x</iqn><iscsi-ip>1<![CDATA[.2]]></iscsi-ip></server></servers>";
constexpr const char* snapshots =
    "<snapshots><snapshot><name>s1</name><display-name>d1</display-name></snapshot><snapshot>"
    "<name>s<![CDATA[&]]>2</name><display-name>d<![CDATA[2]]></display-name></snapshot></snapshots>";
constexpr const char* response =
    "<x><status>0<![CDATA[]]></status><status-msg>a<![CDATA[<]]>b</status-msg><server-name>s<![CDATA[1]]></server-name>"
    "<snapshots><snapshot>a name of<![CDATA[ some ]]>length</snapshot><snapshot>s2</snapshot></snapshots></x>";

int ReadResponse(Scene& s, int action) {
    CommandResponse answer;
    answer.snapshotNames = &s.names;
    const int status = s.connection->ParseResponseXML(response, "//x", action, answer);
    if (answer.status != "0" || answer.statusMsg != "a<b") {
        return 99;
    }
    if (action != 0) {
        s.texts[0] = std::move(answer.name);
    }
    return status;
}

std::unique_ptr<KServer> Server() {
    return std::make_unique<KServer>("an identifier of some length", "iqn.known", "10.20.0.1");
}

/// Appends as a caller has to: what was not taken is still the caller's.
template <typename Owner, typename Object>
int Add(Owner& owner, int (Owner::*add)(Object*), std::unique_ptr<Object> object) {
    const int status = (owner.*add)(object.get());
    static_cast<void>(object.release());
    return status;
}

template <typename Object>
int Copy(const Object& source) {
    const Shallow<Object> copy(source);
    return 0;
}

}  // namespace

template <typename Object>
Shallow<Object>::~Shallow() {
    Forget(object);
}

Scene::Scene(const std::string& arrayAddress, const std::string& arrayKey)
    : address(arrayAddress),
      key(arrayKey),
      array(address, key),
      volume(new KVolume("prod-1", "a name of some length", "a display name of some length", "cg-00000001")),
      layerCopy(KAccessLayer()),
      arrayCopy(array),
      volumeCopy(*volume) {
    auto* const second = new KVolume("prod-3", "vol-00000003", "third", "a group's name of some length");
    for (KVolume* known : {volume, second}) {
        known->SetArray(&array);
        array.AddVolumeToList(known);
    }
    Add(array, &KArray::AddServerToList, Server());
    volume->AddCreatedSnapshot("snap-00000001");
    volume->SetLatestSnapshotID("a snapshot's name of some length");
    array.GetConnection(connection);
    volume->AddCreatedSnapshot("snap-older");
    // The copies hold less than what is assigned to them, and other things.
    arrayCopy.object.AddVolumeToList(volume);
    List<KSnapshot*>(volumeCopy.object).push_back(List<KSnapshot*>(*volume).back());
    for (const char* const name : {"first", "second"}) {
        List<KArray*>(layer).push_back(new KArray(name, "key"));
    }
    List<KArray*>(layerCopy.object).push_back(List<KArray*>(layer).back());
}

Scene::~Scene() = default;

std::string Scene::Known() const {
    return Shown(array) + '|' + Shown(arrayCopy.object) + '|' + Shown(List<KArray*>(layerCopy.object)) + '|' +
           Shown(const_cast<KVolume&>(volumeCopy.object));
}

std::string Scene::Given() const {
    std::string shown;
    for (const std::string& text : texts) {
        shown += text + '|';
    }
    shown += (found == nullptr ? "-" : Shown(*found)) + (own == nullptr ? "-" : *own);
    shown += '|' + Shown(arrays) + '|' + Shown(List<KArray*>(layer));
    // What can come in part stands at the end: then a part is the beginning of the whole.
    for (const std::string& name : names) {
        shown += ';' + name;
    }
    for (const auto& [product, name, displayName, ieee, group] : volumeRecords) {
        shown += ';' + product + ',' + name + ',' + displayName + ',' + ieee + ',' + group;
    }
    for (const auto& [name, displayName] : snapshotRecords) {
        shown += ';' + name + ',' + displayName;
    }
    return shown;
}

const std::vector<Call>& ProcessCalls() {
    static const std::vector<Call> calls = {
        {"KAccessLayer::GlobalInit", [](Scene&) { return KAccessLayer::GlobalInit(), 0; }},
        {"KAccessLayer::GlobalCleanup", [](Scene&) { return KAccessLayer::GlobalCleanup(), 0; }},
    };
    return calls;
}

const std::vector<Call>& Calls() {
    static const std::vector<Call> calls = {
        {"KAccessLayer::KAccessLayer", [](Scene&) { return KAccessLayer(), 0; }},
        {"KAccessLayer::KAccessLayer(copy)", [](Scene& s) { return Copy(s.layer); }},
        {"KAccessLayer::operator=", [](Scene& s) { return s.layerCopy.object = s.layer, 0; }},
        {"KAccessLayer::DiscoverArrays", [](Scene& s) { return s.layer.DiscoverArrays(); }, {}, true, 1},
        {"KAccessLayer::Refresh", [](Scene& s) { return s.layer.Refresh(); }, {}, true, 1},
        {"KAccessLayer::GetArrays", [](Scene& s) { return s.layer.GetArrays(s.arrays); }},
        {"KAccessLayer::ValidateArray",
         [](Scene& s) { return s.layer.ValidateArray(s.address, s.key); },
         {{"List drives failed", "1", false}}},
        {"KArray::KArray", [](Scene& s) { return KArray(s.address, s.key), 0; }},
        {"KArray::KArray(copy)", [](Scene& s) { return Copy(s.array); }},
        {"KArray::operator=", [](Scene& s) { return s.arrayCopy.object = s.array, 0; }},
        {"KArray::GetIPAddress", [](Scene& s) { return s.array.GetIPAddress(s.own); }},
        {"KArray::AddVolumeToList", [](Scene& s) { return s.arrayCopy.object.AddVolumeToList(s.volume); }},
        {"KArray::AddServerToList", [](Scene& s) { return Add(s.array, &KArray::AddServerToList, Server()); }},
        {"KArray::GetVolumeByID", [](Scene& s) { return s.array.GetVolumeByID("prod-3", s.found); }},
        {"KArray::GetVolumeByDispName", [](Scene& s) { return s.array.GetVolumeByDispName("third", s.found); }},
        {"KArray::GetVolumeBySnapID", [](Scene& s) { return s.array.GetVolumeBySnapID("snap-00000001", s.found); }},
        {"KArray::GetVolumeByIDFromArray",
         [](Scene& s) { return s.array.GetVolumeByIDFromArray("6001f3a0000100000000000000000002", s.found); },
         {{listVolumes, "2", false}}},
        {"KArray::GetVolumeByDispNameFromArray",
         [](Scene& s) { return s.array.GetVolumeByDispNameFromArray("sql-log-1-0002", s.found); },
         {{listVolumes, "2", false}}},
        {"KArray::GetVolumeBySnapIDFromArray",
         [](Scene& s) { return s.array.GetVolumeBySnapIDFromArray("snap-00000002", s.found); },
         {{listVolumes, "2", false},
          {listSnapshots, "0", false},
          {listSnapshots, "0", false},
          {listSnapshots, "2", false}}},
        {"KArray::CloneVolume",
         [](Scene& s) { return s.array.CloneVolume("cg-00000001", "snap-00000001", s.found); },
         {{"HTTP return code: %ld. Clone volume failed", "1", true}, {"List volume failed", "2", false}}},
        {"KArray::AttachVolume",
         [](Scene& s) { return s.array.AttachVolume("vol-00000001", "srv-00000001"); },
         {{"HTTP return code: %ld. Attach volume failed", "1", true}}},
        {"KArray::DetachVolume",
         [](Scene& s) { return s.array.DetachVolume("vol-00000002", "srv-00000001"); },
         {{"HTTP return code: %ld. Detach volume failed", "1", true}}},
        {"KArray::DeleteVolume",
         [](Scene& s) { return s.array.DeleteVolume("vol-00000003"); },
         {{"HTTP return code: %ld. Delete volume failed", "1", true}}},
        {"KArray::ResyncVolume",
         [](Scene& s) { return s.array.ResyncVolume("snap-00000001", s.volume); },
         {{"HTTP return code: %ld. Resync volume failed", "1", true}}},
        {"KArray::GetServerIDByIQN", [](Scene& s) { return s.array.GetServerIDByIQN("iqn.known", s.texts[0]); }},
        {"KArray::GetServerIDByIQNFromArray(known)",
         [](Scene& s) { return s.array.GetServerIDByIQNFromArray("iqn.2011-03.example.korvel:host-0001", s.texts[0]); },
         {{"List servers failed", noAddress, false}},
         true},
        {"KArray::GetServerIDByIQNFromArray(new)",
         [](Scene& s) { return s.array.GetServerIDByIQNFromArray("iqn.new", s.texts[0]); },
         {{"List servers failed", noAddress, false}, {"HTTP return code: %ld. Create server failed", "1", true}},
         true},
        {"KVolume::KVolume", [](Scene&) { return KVolume("an identifier of some length", "n", "d", "g"), 0; }},
        {"KVolume::KVolume(copy)", [](Scene& s) { return Copy(*s.volume); }},
        {"KVolume::operator=", [](Scene& s) { return s.volumeCopy.object = *s.volume, 0; }},
        {"KVolume::CreateSnapshotSet",
         [](Scene& s) {
             std::string names[] = {"vol-00000001", "vol-00000002"};
             std::string groups[] = {"cg-00000001", "cg-00000002"};
             return KVolume::CreateSnapshotSet(&s.array, {&names[0], &names[1]}, {&groups[0], &groups[1]}, &s.names);
         },
         {{"HTTP return code: %ld. Create snapshot set failed", "1", true}},
         true},
        {"KVolume::GetVolumeName", [](Scene& s) { return s.volume->GetVolumeName(s.texts[0]); }},
        {"KVolume::GetVolumeDispName", [](Scene& s) { return s.volume->GetVolumeDispName(s.texts[0]); }},
        {"KVolume::GetCgID", [](Scene& s) { return List<KVolume*>(s.array).back()->GetCgID(s.texts[0]); }},
        {"KVolume::GetLatestSnapshotID", [](Scene& s) { return s.volume->GetLatestSnapshotID(s.texts[0]); }},
        {"KVolume::SetLatestSnapshotID",
         [](Scene& s) { return s.volume->SetLatestSnapshotID("an identifier of some length"); }},
        {"KVolume::AddSnapshotToList",
         [](Scene& s) { return Add(*s.volume, &KVolume::AddSnapshotToList, std::make_unique<KSnapshot>("s")); }},
        {"KVolume::IsSnapAvailable", [](Scene& s) { return s.volume->IsSnapAvailable("snap-00000001"); }},
        {"KVolume::AddCreatedSnapshot",
         [](Scene& s) { return s.volume->AddCreatedSnapshot("an identifier of some length"); }},
        {"KVolume::DeleteSnapshot",
         [](Scene& s) {
             std::string name = "snap-00000001";
             return s.volume->DeleteSnapshot(name);
         },
         {{"HTTP return code: %ld. Delete snapshot failed", "1", true}}},
        {"KException::KException(copy)",
         [](Scene&) {
             const KException one("a message of some length");
             const KException other(one);
             return std::string(other.ErrorText()) == one.ErrorText() ? 0 : 1;
         }},
        {"KException::operator=",
         [](Scene&) {
             const KException one("a message of some length");
             KException other("another message of some length");
             other = one;
             return std::string(other.ErrorText()) == one.ErrorText() ? 0 : 1;
         }},
        {"KConnection::ParseVolumeXMLByName",
         [](Scene& s) {
             return s.connection->ParseVolumeXMLByName(volumes, "a display name of several pieces", s.texts[0],
                                                       s.texts[1], s.texts[2]);
         }},
        {"KConnection::ParseVolumeList",
         [](Scene& s) { return s.connection->ParseVolumeList(volumes, &s.volumeRecords); },
         {},
         true},
        {"KConnection::ParseServerXMLByIQN",
         [](Scene& s) {
             std::string address;  // changes with every server that is read
             const int status = s.connection->ParseServerXMLByIQN(servers, "q2x", s.texts[0], address);
             s.texts[1] = std::move(address);
             return status;
         }},
        {"KConnection::ParseResponseXML(set)", [](Scene& s) { return ReadResponse(s, 0); }, {}, true},
        {"KConnection::ParseResponseXML(server)", [](Scene& s) { return ReadResponse(s, 2); }},
        {"KConnection::ParseSnapshotList",
         [](Scene& s) { return s.connection->ParseSnapshotList(snapshots, &s.snapshotRecords); },
         {},
         true},
        {"KConnection::ParseDriveList",
         [](Scene&) { return KConnection::ParseDriveList("<show-disks-response><status/></show-disks-response>"); }},
    };
    return calls;
}

int NextCall(Scene& scene) {
    KVolume* next = nullptr;
    return scene.array.GetVolumeByDispNameFromArray("sql-data-1-0001", next) != 0 || next == nullptr;
}

nlohmann::json Inventory(nlohmann::json state) {
    state["volumes"][1]["mappedTo"] = {"srv-00000001"};
    state["snapshots"].erase("cg-00000003");  // so that its volume can be deleted
    std::rotate(state["volumes"].begin(), std::prev(state["volumes"].end()), state["volumes"].end());
    return state;
}

bool Whole() {
    const char* const wanted = std::getenv("KORVEL_TORTURE");
    return wanted != nullptr && std::string(wanted) == "whole";
}

std::ofstream Figures(const std::string& name) {
    const char* const folder = std::getenv("KORVEL_TORTURE_FIGURES");
    return folder == nullptr ? std::ofstream() : std::ofstream(std::string(folder) + '/' + name);
}

}  // namespace Korvel::Torture
