#include <libxml/parser.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "Options.h"
#include "Process.h"
#include "Simulator.h"
#include "control/ControlServer.h"
#include "control/StateFile.h"

namespace {

// The entries hold access keys, so the file is its owner's alone from the first byte on.
void WriteRegFile(const std::string& path, const std::string& text) {
    Korvel::Sim::Process::KeepFilesPrivate();
    std::ofstream file(path, std::ios::trunc);
    if (file) {
        using std::filesystem::perms;
        std::filesystem::permissions(path, perms::owner_read | perms::owner_write);
    }
    if (!(file << text).flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

void Announce(const Korvel::Sim::Simulator& simulator, const Korvel::Sim::ControlServer& control) {
    std::cout << "ready control=" << control.Address();
    for (const auto& array : simulator.Arrays()) {
        std::cout << " array=" << array->Address() << " key=" << array->Key();
    }
    std::cout << "\n" << simulator.RegistryText() << "; end of registry entries" << std::endl;
    if (!std::cout) {
        throw std::runtime_error("standard output cannot be written, and nobody knows the ports");
    }
}

void Run(const Korvel::Sim::Options& options) {
    Korvel::Sim::Process process;
    Korvel::Sim::Simulator simulator(options);
    Korvel::Sim::ControlServer control(simulator, &Korvel::Sim::Process::End);
    control.Start(options.IsOpen() ? "127.0.0.1" : options.address, options.controlPort);
    if (options.IsOpen()) {
        std::cerr << "korvel-simulator: warning: every machine that reaches " << options.address
                  << " can try its keys on these arrays\n";
    }
    if (!options.regFile.empty()) {
        WriteRegFile(options.regFile, simulator.RegistryText());
    }
    Announce(simulator, control);
    process.WaitForEnd();
    if (!options.saveState.empty()) {
        Korvel::Sim::StateFile::Write(options.saveState, simulator.Held());
    }
}

}  // namespace

int main(int argc, char** argv) {
    int exitCode = 0;
    try {
        if (const auto options = Korvel::Sim::Options::Parse(argc, argv, exitCode)) {
            xmlInitParser();
            Run(*options);
            xmlCleanupParser();
        }
    } catch (const std::exception& error) {
        std::cerr << "korvel-simulator: " << error.what() << std::endl;
        exitCode = 1;
    }
    return exitCode;
}
