#include "Options.h"

#include <arpa/inet.h>

#include <CLI/CLI.hpp>
#include <fstream>

#include "KVersion.h"
#include "page/ManPage.h"
#include "tree/Description.h"

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

std::string CheckLoopback(const std::string& text) {
    in_addr address = {};
    const bool loopback = inet_pton(AF_INET, text.c_str(), &address) == 1 && (ntohl(address.s_addr) >> 24U) == 127;
    return loopback ? "" : "only loopback addresses are served, 127.0.0.1 for example";
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
    app.add_option("--address", options.address, "loopback address to serve on")
        ->check(CLI::Validator(CheckLoopback, "LOOPBACK"))
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
    const auto writePage = [&app](const std::string& path) {
        if (!(std::ofstream(path) << ManPage(app)).flush()) {
            throw CLI::FileError(path + " cannot be written");
        }
        throw CLI::Success();
    };
    app.add_option_function<std::string>("--man-page", writePage, "write the manual page")->group("");  // for the build
}

}  // namespace

std::optional<Options> Options::Parse(int argc, const char* const* argv, int& exitCode) {
    Options options;
    CLI::App app("A storage array to develop and test against, on loopback only.", "korvel-simulator");
    Declare(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? 0 : wrongUsage;
        return std::nullopt;
    }
    if (options.port != 0 && options.port + static_cast<int>(options.arrays) > 65536) {
        std::cerr << "--port: there are not enough ports after " << options.port << "\n";
        exitCode = wrongUsage;
        return std::nullopt;
    }
    return options;
}

}  // namespace Korvel::Sim
