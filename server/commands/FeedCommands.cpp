#include "server/Company.h"
#include "server/commands/CommandGroups.h"
#include "server/store/BoundedFile.h"
#include "server/updates/PackageFile.h"
#include "util/Base64.h"
#include "util/Text.h"

#include <algorithm>
#include <iostream>

namespace halvane::server {

namespace {

// So that the whole feed stays below the megabyte that clients read, however its notes are escaped.
constexpr std::size_t kLargestNotes = 4 * 1024;
constexpr std::size_t kMostPackages = 32;
constexpr std::size_t kLongestSystem = 32;

/// "12", "12.5"
bool isSystemVersion(const std::string& text) {
    const auto parts = util::split(text, '.');
    return text.size() <= kLongestSystem && std::ranges::all_of(parts, [](const std::string& part) {
               return !part.empty() && part.find_first_not_of("0123456789") == std::string::npos;
           });
}

/// What --notes names; empty without it.
util::Result<std::string> notesOf(const Arguments& arguments) {
    const auto file = arguments.option("--notes");
    if (!file) return std::string();
    auto notes = BoundedFile::read(*file, kLargestNotes);
    if (notes && !util::isValidUtf8(*notes)) return util::dataError(*file + " is not UTF-8 text");
    return notes;
}

ExitCode showKey(const Command::Call& call) {
    call.console.out << util::Base64::encode(call.company.updateKey().publicKey()) << std::endl;
    return ExitCode::Done;
}

ExitCode add(const Command::Call& call) {
    const auto& [arguments, company, console] = call;
    const std::string& file = arguments.words().front();
    const std::string system = arguments.option("--minimum-system", "12");
    if (!isSystemVersion(system)) return failed(console, "--minimum-system takes a version such as 12 or 12.5", ExitCode::Usage);
    const auto notes = notesOf(arguments);
    if (!notes) return failed(console, notes.error().description);
    const auto bytes = BoundedFile::read(file, PackageStore::kLargest);
    if (!bytes) return failed(console, bytes.error().description);

    // dpkg-deb reads our copy: what is signed and what was looked at are the same bytes.
    StagedFile staged = company.packages.stage(*bytes);
    const auto id = PackageFile::nameIn(staged.path());
    if (!id) return failed(console, file + ": " + id.error().description);
    const auto offered = company.packages.all();
    const bool replaces = std::ranges::any_of(offered, [&id](const Package& other) { return other.id.fileName() == id->fileName(); });
    if (!replaces && offered.size() >= kMostPackages)
        return failed(console, "there are " + std::to_string(kMostPackages) + " packages on offer; remove one first");
    company.packages.put({.id = *id,
                          .minimumSystem = system,
                          .notes = *notes,
                          .length = bytes->size(),
                          .signature = company.updateKey().sign(*bytes),
                          .added = company.clock()},
                         staged);
    console.out << "added " << id->fileName() << std::endl;
    return ExitCode::Done;
}

ExitCode list(const Command::Call& call) {
    const auto& [arguments, company, console] = call;
    console.out << "VERSION\tARCHITECTURE\tLENGTH\tFILE\n";
    for (const Package& package : company.packages.all()) {
        console.out << package.id.version << '\t' << package.id.architecture << '\t' << package.length << '\t' << package.id.fileName()
                    << '\n';
        if (!company.packages.isOffered(package))
            console.err << "halvane-server: " << package.id.fileName() << " is missing or was changed: it is not offered" << std::endl;
    }
    return ExitCode::Done;
}

ExitCode remove(const Command::Call& call) {
    const std::string& version = call.arguments.words().front();
    const auto count = call.company.packages.remove(version);
    if (count == 0) return failed(call.console, "there is no package of version " + version);
    call.console.out << "removed " << version << ", packages: " << count << std::endl;
    return ExitCode::Done;
}

ExitCode sign(const Command::Call& call) {
    const auto bytes = BoundedFile::read(call.arguments.words().front(), PackageStore::kLargest);
    if (!bytes) return failed(call.console, bytes.error().description);
    call.console.out << util::Base64::encode(call.company.updateKey().sign(*bytes)) << std::endl;
    return ExitCode::Done;
}

}  // namespace

std::vector<Command> feedCommands() {
    return {
        {.name = "feed key",
         .synopsis = "",
         .summary = "Prints the public key that clients are built with to take updates from this server, base64.",
         .options = {},
         .data = Command::Data::MayBeMade,
         .run = showKey},
        {.name = "feed add",
         .synopsis = "PACKAGE.deb [--notes FILE] [--minimum-system V]",
         .summary = "Signs a package and offers it to clients on Debian V (12) or later; the same version again replaces it.\n"
                    "      Notes are UTF-8 plain text of at most 4 KiB.",
         .options = {"--notes", "--minimum-system"},
         .fewestWords = 1,
         .mostWords = 1,
         .data = Command::Data::MayBeMade,
         .run = add},
        {.name = "feed list", .synopsis = "", .summary = "Shows the packages that clients are offered.", .options = {}, .run = list},
        {.name = "feed remove",
         .synopsis = "VERSION",
         .summary = "Offers the packages of that version no longer and deletes them.",
         .options = {},
         .fewestWords = 1,
         .mostWords = 1,
         .run = remove},
        {.name = "feed sign",
         .synopsis = "FILE",
         .summary = "Prints the signature over the file's bytes, base64, for a feed that is kept elsewhere.",
         .options = {},
         .fewestWords = 1,
         .mostWords = 1,
         .data = Command::Data::MayBeMade,
         .run = sign},
    };
}

}  // namespace halvane::server
