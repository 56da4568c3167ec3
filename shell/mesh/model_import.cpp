#include "shell/mesh/model_import.hpp"

#include "shell/base/child_process.hpp"
#include "shell/base/error.hpp"
#include "shell/base/own_programs.hpp"
#include "shell/base/printable.hpp"
#include "shell/base/written_text.hpp"
#include "shell/mesh/mesh_memory.hpp"
#include "shell/mesh/model_file.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

namespace korl {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void failForTime(const ModelReading& reading) {
    const double seconds = static_cast<double>(reading.timeout.count()) / 1000;
    std::string number = std::to_string(seconds);
    number.erase(number.find_last_not_of('0') + 1);
    number.erase(number.find_last_not_of('.') + 1);
    throw Error(
        fmt::format("it was not read within {} {}\n"
                    "If it is not damaged, allow more time with --model-timeout (model_timeout in Python).",
                    number, seconds == 1 ? "second" : "seconds"));
}

[[noreturn]] void failForMemory(const ModelReading& reading) {
    throw Error(fmt::format("reading it takes more than {} MiB of memory\n"
                            "If it is not damaged, allow more with --model-memory (model_memory in Python).",
                            reading.memory >> 20));
}

[[noreturn]] void failForCrash(int wait_status, const WrittenText& log) {
    const std::string last_line = log.lastLines(1);
    throw Error(fmt::format(
        "the program that reads it crashed: {}{}{}\n"
        "The file is probably damaged; write it anew with the program that made it, or in another format.",
        endText(wait_status), last_line.empty() ? "" : ", ", last_line));
}

[[noreturn]] void failToHandOver(const WrittenText& log) {
    const std::string last_line = log.lastLines(1);
    throw Error((last_line.empty() ? "a mesh cannot be handed to another process" : last_line) +
                "\nIt takes memory, and counts as a file where the size of files is limited (ulimit -f).");
}

/// Waits for the reader's end. @returns nothing where it takes too long.
std::optional<int> waitFor(ChildProcess& child, const ModelReading& reading) {
    constexpr std::chrono::milliseconds slice{100};
    std::optional<int> status;
    for (auto left = reading.timeout; !status && left.count() > 0; left -= slice) {
        status = child.waitFor(std::min(slice, left));
        if (!status && reading.meanwhile)
            reading.meanwhile();
    }
    return status;
}

/// Has korl-import read the file, and takes over what that hands back.
Mesh readInChild(const fs::path& file, UpAxis up, const ModelReading& reading) {
    const MemoryFile result;
    const WrittenText log;
    ProcessStart start{ownProgram("korl-import"),
                       {fs::absolute(file).string(), nameOf(up), std::to_string(reading.memory),
                        std::to_string(::getpid()), reading.anywhere ? "anywhere" : "beside"}};
    // The reader clears large buffers; in large pages that takes half of the time of a small model.
    start.environment = {{"GLIBC_TUNABLES", "glibc.malloc.hugetlb=1"}};
    start.shared = result.descriptor();
    start.output = log.descriptor();
    ChildProcess child(start);
    const std::optional<int> status = waitFor(child, reading);
    if (!status) {
        child.kill();
        failForTime(reading);
    }
    if (WIFEXITED(*status) && WEXITSTATUS(*status) == import_exit_code_no_memory)
        failForMemory(reading);
    if (WIFEXITED(*status) && WEXITSTATUS(*status) == import_exit_code_not_handed_over)
        failToHandOver(log);
    if (!result.isSealed())
        failForCrash(*status, log);

    MeshReader reader(result);
    if (const std::string refusal = reader.text(); !refusal.empty())
        throw Error(refusal);
    for (std::uint64_t left = reader.number(); left > 0; --left) {
        const std::string note = reader.text();
        if (reading.warn)
            reading.warn(fmt::format("the model {}: {}", printable(file.string()), note));
    }
    return reader.mesh();
}

} // namespace

UpAxis parseUpAxis(std::string_view text) {
    if (text == "x")
        return UpAxis::x;
    if (text == "y")
        return UpAxis::y;
    if (text == "z")
        return UpAxis::z;
    throw Error(fmt::format("\"{}\" is not an axis of a model; there are x, y and z", text));
}

const char* nameOf(UpAxis up) {
    return up == UpAxis::x ? "x" : up == UpAxis::y ? "y" : "z";
}

std::uint64_t ModelReading::halfOfMemory() {
    return static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES)) *
           static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)) / 2;
}

ModelImport modelImportWith(const ModelReading& reading) {
    return [reading](const fs::path& file, UpAxis up) { return importModel(file, up, reading); };
}

Mesh importModel(const fs::path& file, UpAxis up, const ModelReading& reading) {
    try {
        requireModelFile(file);
        Mesh mesh = readInChild(file, up, reading);
        mesh.source = ModelSource{fs::absolute(file), up};
        return mesh;
    } catch (const std::exception& error) {
        throw Error(fmt::format("cannot read the model {}: {}", printable(file.string()), error.what()));
    }
}

} // namespace korl
