#include "support/Simulator.h"

#include <curl/curl.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace Korvel::Testing {
namespace {

std::size_t Append(char* bytes, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(bytes, size * count);
    return size * count;
}

// Bytes that are no UTF-8 come as an object around a base64 text, and stay one.
std::string Bytes(const nlohmann::json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

JournalEntry Entry(const nlohmann::json& value) {
    JournalEntry entry;
    entry.sequence = value.at("sequence");
    entry.array = value.at("array");
    entry.method = Bytes(value.at("method"));
    entry.target = Bytes(value.at("target"));
    entry.version = Bytes(value.at("version"));
    for (const auto& header : value.at("headers")) {
        entry.headers.emplace_back(Bytes(header.at(0)), Bytes(header.at(1)));
    }
    entry.body = Bytes(value.at("body"));
    entry.newConnection = value.at("newConnection");
    entry.fault = value.at("fault").is_null() ? 0 : value.at("fault").get<std::uint64_t>();
    return entry;
}

}  // namespace

Simulator& Simulator::Instance() {
    static Simulator instance([] {
        const char* control = std::getenv("KORVEL_SIMULATOR_CONTROL");
        if (control == nullptr) {
            throw std::runtime_error("KORVEL_SIMULATOR_CONTROL does not name a simulator; run under with-simulator");
        }
        return std::string(control);
    }());
    return instance;
}

Simulator::Simulator(std::string control) : host(std::move(control)) {
    for (const auto& array : Call("GET", "/arrays")) {
        arrays.emplace_back(array.at("address"), array.at("key"));
    }
}

void Simulator::Reset() {
    Call("POST", "/reset");
}

nlohmann::json Simulator::State(std::size_t array) {
    return Call("GET", "/arrays/" + std::to_string(array) + "/state");
}

void Simulator::SetState(std::size_t array, const nlohmann::json& state) {
    Call("PUT", "/arrays/" + std::to_string(array) + "/state", state.dump());
}

void Simulator::Put(const std::string& path, const std::string& text) {
    Call("PUT", path, text);
}

std::uint64_t Simulator::Arm(const nlohmann::json& fault) {
    return Call("POST", "/faults", fault.dump()).at("id");
}

nlohmann::json Simulator::UnfiredFaults() {
    nlohmann::json unfired = nlohmann::json::array();
    for (const auto& fault : Call("GET", "/faults")) {
        if (fault.at("fired") < fault.at("count")) {
            unfired.push_back(fault);
        }
    }
    return unfired;
}

void Simulator::ClearFaults() {
    Call("DELETE", "/faults");
}

std::vector<JournalEntry> Simulator::Journal() {
    std::vector<JournalEntry> entries;
    const nlohmann::json journal = Call("GET", "/journal");
    for (const auto& entry : journal.at("entries")) {
        entries.push_back(Entry(entry));
    }
    return entries;
}

void Simulator::ClearJournal() {
    Call("DELETE", "/journal");
}

nlohmann::json Simulator::Call(const char* method, const std::string& path, const std::string& sent) {
    const std::unique_ptr<CURL, void (*)(CURL*)> handle(curl_easy_init(), curl_easy_cleanup);
    const std::string url = "http://" + host + path;
    std::string received;
    curl_easy_setopt(handle.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle.get(), CURLOPT_PROXY, "");
    curl_easy_setopt(handle.get(), CURLOPT_CUSTOMREQUEST, method);
    if (*method == 'P') {
        curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(sent.size()));
        curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDS, sent.c_str());
    }
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, Append);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &received);
    const CURLcode result = curl_easy_perform(handle.get());
    long status = 0;
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    if (result != CURLE_OK || status != 200) {
        throw std::runtime_error(std::string(method) + " " + url + ": " +
                                 (result != CURLE_OK ? curl_easy_strerror(result) : received.c_str()));
    }
    return nlohmann::json::parse(received);
}

}  // namespace Korvel::Testing
