// korl-import FILE UP MEMORY PARENT beside|anywhere: reads a model file for the shell, which starts it and
// ends it, so that what a file does to the reader happens here. UP is the axis that becomes z, MEMORY the
// bytes that may be taken, PARENT the number of the process that waits for it.
//
// What it has to say it writes to descriptor 3, a MemoryFile, and seals that: the reason why the file is
// refused, as a text; and where that is empty, the number of notes, the notes, and the mesh.

#include "shell/base/child_process.hpp"
#include "shell/importer/model_reader.hpp"
#include "shell/importer/process_limits.hpp"
#include "shell/mesh/mesh_memory.hpp"
#include "shell/mesh/model_file.hpp"
#include "shell/mesh/model_import.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

namespace {

using namespace korl;

/// What the shell gets to read.
void hand(const MemoryFile& result, const std::string& refusal, const ModelContent& content) {
    MeshWriter writer(result);
    writer.put(refusal);
    if (refusal.empty()) {
        writer.put(std::uint64_t{content.notes.size()});
        for (const std::string& note : content.notes)
            writer.put(note);
        writer.put(content.mesh);
    }
    result.seal();
}

} // namespace

int main(int argument_count, char** arguments) {
    if (argument_count != 6) {
        std::fputs("korl-import reads model files for korl, which starts it itself\n", stderr);
        return 2;
    }
    endWithParent(static_cast<pid_t>(std::strtol(arguments[4], nullptr, 10)));
    std::signal(SIGXFSZ, SIG_IGN); // a MemoryFile counts as a file: let writing beyond `ulimit -f` fail
    limitMemory(std::strtoull(arguments[3], nullptr, 10));

    ModelContent content;
    std::string refusal;
    try {
        content = readModelFile(arguments[1], parseUpAxis(arguments[2]),
                                std::string_view(arguments[5]) == "anywhere");
    } catch (const std::exception& error) {
        refusal = error.what();
    }
    try {
        hand(MemoryFile(shared_descriptor), refusal, content);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        std::_Exit(import_exit_code_not_handed_over);
    }
    std::_Exit(0); // nothing is worth being taken apart first
}
