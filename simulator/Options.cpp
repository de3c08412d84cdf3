#include "Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>

#include "KVersion.h"
#include "page/ManPage.h"
#include "tree/Description.h"
#include "wire/Socket.h"

namespace Korvel::Sim {
namespace {

constexpr int wrongUsage = 64;

const char* const examples = R"(Examples:
  korvel-simulator
      one array with four volumes, a server and two drives, on any free port
  korvel-simulator --arrays 2 --volumes 8 --groups 2 --snapshots 3 --reg-file registry.reg
      two arrays; KORVEL_REGISTRY=registry.reg lets the library find them
  korvel-simulator --port 8443 --control-port 8080 --volumes 100000 --servers 0
      a large array without any server, on fixed ports

The first line of standard output names the ports and keys, the lines after it are the registry entries. Ctrl-C ends it.)";

/// A range of addresses: its first bits.
struct Network {
    std::uint32_t prefix;
    unsigned free;  ///< how many bits are free
};

constexpr Network loopback{127, 24};
constexpr Network privateNetworks[] = {{10, 24}, {172U << 4U | 1U, 20}, {192U << 8U | 168U, 16}};

bool IsIn(const std::string& text, const Network& network) {
    const std::optional<std::uint32_t> address = Socket::ParseAddress(text);
    return address && *address >> network.free == network.prefix;
}

std::string CheckAddress(const std::string& text) {
    const bool served =
        IsIn(text, loopback) || std::any_of(std::begin(privateNetworks), std::end(privateNetworks),
                                            [&](const Network& network) { return IsIn(text, network); });
    return served ? "" : "only loopback and private addresses are served, 127.0.0.1 for example";
}

std::string ManPage(const CLI::App& app) {
    return Reference::ProgramPage(Reference::Describe(app), KORVEL_VERSION,
                                  {{"EXIT STATUS",
                                    {{"0", "ended by Ctrl-C or the control interface"},
                                     {"1", "failed: a message says why"},
                                     {"64", "wrong usage"}}}});
}

void Declare(CLI::App& app, Options& options) {
    const auto ports = CLI::Range(0, 65535);
    app.set_version_flag("--version", "korvel-simulator " KORVEL_VERSION);
    app.footer(examples);
    app.add_option("--address", options.address,
                   "address to serve the arrays on: loopback, or a private one that other machines reach")
        ->check(CLI::Validator(CheckAddress, "ADDRESS"))
        ->capture_default_str();
    app.add_option("--port", options.port, "port of the first array, the next ones follow; 0: any free ports")
        ->check(ports)
        ->capture_default_str();
    app.add_option("--control-port", options.controlPort, "port of the control interface; 0: any free port")
        ->check(ports)
        ->capture_default_str();
    const auto number = [&](const char* name, std::size_t& value, std::size_t lowest, std::size_t highest,
                            const char* meaning) {
        app.add_option(name, value, meaning)->check(CLI::Range(lowest, highest))->capture_default_str();
    };
    number("--arrays", options.arrays, 1, 100, "number of arrays");
    number("--volumes", options.fill.volumes, 0, 1000000, "volumes of each array");
    number("--groups", options.fill.groups, 0, 1000000, "consistency groups of each array; 0: one for every volume");
    number("--snapshots", options.fill.snapshots, 0, 1000000, "snapshots of each group");
    number("--servers", options.fill.servers, 0, 100000, "servers each array knows");
    number("--drives", options.fill.drives, 0, 100000, "drives of each array");
    number("--journal", options.journal, 1, 10000000, "requests the journal keeps");
    app.add_option("--reg-file", options.regFile, "write the registry entries to this file too");
    app.add_option("--state", options.state,
                   "start with what the arrays hold in this file: the form that --save-state writes")
        ->check(CLI::ExistingFile);
    app.add_option("--save-state", options.saveState, "write what the arrays hold to this file at the end");
    const auto writePage = [&app](const std::string& path) {
        if (!(std::ofstream(path) << ManPage(app)).flush()) {
            throw CLI::FileError(path + " cannot be written");
        }
        throw CLI::Success();
    };
    app.add_option_function<std::string>("--man-page", writePage, "write the manual page")->group("");  // for the build
}

}  // namespace

bool Options::IsOpen() const {
    return !IsIn(address, loopback);
}

std::optional<Options> Options::Parse(int argc, const char* const* argv, int& exitCode) {
    Options options;
    CLI::App app("A storage array to develop and test against.", "korvel-simulator");
    Declare(app, options);
    app.failure_message([](const CLI::App* parser, const CLI::Error& error) {
        return "korvel-simulator: " + CLI::FailureMessage::simple(parser, error);
    });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? 0 : wrongUsage;
        return std::nullopt;
    }
    if (options.port != 0 && options.port + static_cast<int>(options.arrays) > 65536) {
        std::cerr << "korvel-simulator: --port: there are not enough ports after " << options.port << "\n";
        exitCode = wrongUsage;
        return std::nullopt;
    }
    return options;
}

}  // namespace Korvel::Sim
