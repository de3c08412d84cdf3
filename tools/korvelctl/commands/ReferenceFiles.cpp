#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "KVersion.h"
#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/Shells.h"
#include "completion/Vocabulary.h"
#include "outcome/ExitMeaning.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"
#include "page/ManPage.h"
#include "page/OptionTable.h"
#include "tree/CommandInfo.h"
#include "tree/Description.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::filesystem::path folder;
    const CLI::App* program = nullptr;
};

std::vector<Reference::PageSection> Sections() {
    Reference::PageSection statuses{"EXIT STATUS", {}};
    for (const ExitMeaning& meaning : ExitMeanings) {
        statuses.terms.emplace_back(std::to_string(meaning.status), meaning.meaning);
    }
    return {statuses,
            {"ENVIRONMENT",
             {{"KORVEL_REGISTRY", "the file that stands in for the registry"},
              {"KORVEL_LOG_FILE", "the file for the library's log records, as --log names it"},
              {"KORVEL_LOG_LEVEL", "the highest level of the records, as --log-level names it"}}},
            {"FILES", {{"/etc/korvel/registry.reg", "the configuration, unless KORVEL_REGISTRY names another file"}}}};
}

void Write(Report& report, const std::filesystem::path& path, const std::string& text) {
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    if (!(std::ofstream(path, std::ios::binary) << text).flush()) {
        throw Failure(ExitFailed, path.string() + " cannot be written");
    }
    report.AddRow({path.string()});
}

void WriteCommandPages(Report& report, const std::filesystem::path& folder, const Reference::CommandInfo& family,
                       const Reference::CommandInfo& program) {
    for (const Reference::CommandInfo& command : family.commands) {
        if (command.commands.empty()) {
            Write(report, folder / (PageName(command) + ".1"), CommandPage(command, program, KORVEL_VERSION));
        }
        WriteCommandPages(report, folder, command, program);
    }
}

void Run(const Options& options, Report& report) {
    const Reference::CommandInfo program = Reference::Describe(*options.program);
    report.SetColumns({{"File", "file"}});
    Write(report, options.folder / "man1" / (program.name + ".1"), ProgramPage(program, KORVEL_VERSION, Sections()));
    WriteCommandPages(report, options.folder / "man1", program, program);
    for (const Shell& shell : Shells) {
        Write(report, options.folder / "share" / shell.path, shell.makeScript(Reference::MakeVocabulary(program)));
    }
    Write(report, options.folder / "options.md", Reference::OptionTable(program));
}

}  // namespace

void AddReferenceFiles(CLI::App& program, CommandLine& line) {
    AddCommand<Options>(
        program, line,
        {"reference", "Write the man pages, the completion scripts and the table of the options into a folder",
         "korvelctl reference build/reference"},
        [&program](CLI::App& command, Options& options) {
            command.group("");  // for the build, and not shown
            options.program = &program;
            command.add_option("FOLDER", options.folder, "The folder")->required();
        },
        Run);
}

}  // namespace Korvel::Ctl
