// Loads a module, asks its entry point and unloads it, for a shell that has not loaded it yet: what it does
// to the process, it does to this one. The shell starts it as
//
//     korl-try-module FILE ENTRY_POINT HEAP SHELL
//
// with one of `trial_heaps` and the number of its own process, and reads what became of it from the file
// that is its `shared_descriptor` (see `trial_words`).

#include "shell/base/caught_exception.hpp"
#include "shell/base/child_process.hpp"
#include "shell/base/error.hpp"
#include "shell/plugins/plugin_handle.hpp"
#include "shell/plugins/plugin_trial.hpp"

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <link.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

namespace words = korl::trial_words;

void send(const std::string& word) {
    [[maybe_unused]] const ssize_t written = ::write(korl::shared_descriptor, word.c_str(), word.size() + 1);
}

/// Comes when an exception leaves a static initialiser or a destructor of the module.
[[noreturn]] void onTerminate() {
    if (!std::current_exception())
        std::abort();
    try {
        throw;
    } catch (...) {
        send(words::threw + korl::nameOfCaughtException());
    }
    ::_exit(1);
}

/// A module that prints without end is not to fill the memory. Writing more fails.
void limitOutput() {
    constexpr rlim_t max_output = 16 << 20; // bytes
    const rlimit limit{max_output, max_output};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_IGN);
}

/// How much memory a library takes, in bytes of whole pages; 0 where it cannot be told.
std::size_t sizeInMemory(const char* file) {
    std::ifstream stream(file, std::ios::binary);
    ElfW(Ehdr) header{};
    stream.read(reinterpret_cast<char*>(&header), sizeof header);
    stream.seekg(static_cast<std::streamoff>(header.e_phoff));
    std::size_t end = 0;
    for (int i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment{};
        if (!stream.read(reinterpret_cast<char*>(&segment), sizeof segment))
            return 0;
        if (segment.p_type == PT_LOAD)
            end = std::max<std::size_t>(end, segment.p_vaddr + segment.p_memsz);
    }
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return (end + page - 1) / page * page;
}

/// Has the library come to lie alone between two wide stretches of memory that nothing may touch. Tables of
/// the loader and code that are damaged reach beyond the library. Whether that ends the process would depend
/// on what happens to lie there, here and in the shell; so it always ends this one.
void isolateLibrary(const char* file) {
    constexpr std::size_t wide = std::size_t{1}
                                 << 38; // further than offsets of 32 bits lead, times the size of an entry
    const std::size_t size = sizeInMemory(file);
    const auto reserve = [](std::size_t bytes) {
        return ::mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    };
    if (size == 0 || size > wide)
        return;
    void* const all = reserve(wide + size + wide);
    if (all == MAP_FAILED)
        return;
    void* const place = static_cast<char*>(all) + wide;
    ::munmap(place, size);
    constexpr int max_gaps = 100; // elsewhere, which the system would take first
    for (int gap = 0; gap < max_gaps && reserve(size) != place; ++gap) {
    }
    ::munmap(place, size);
}

/// A heap as that of a program which has worked for a while: pieces of many sizes are free between others in
/// use, and what is free is not zero. Code that is damaged may take what malloc leaves there, and do no harm
/// by chance in a new process.
class UsedHeap {
public:
    UsedHeap() {
        // What no piece below takes; in steps that the system does not get back.
        for (int i = 0; i < 20; ++i)
            my_pieces.push_back(newPiece(std::size_t{60} * 1024));
        my_pieces.clear();
        for (int round = 0; round < 40; ++round)
            for (std::size_t size = 16; size <= 512; size += 16)
                my_pieces.push_back(newPiece(size));
        for (std::size_t i = 0; i < my_pieces.size(); ++i)
            if ((i + i / 32) % 2 == 0)
                my_pieces[i].bytes.reset();
    }

    /// Whether nobody has written into the pieces that are in use.
    bool isIntact() const {
        return std::all_of(my_pieces.begin(), my_pieces.end(), [](const Piece& piece) {
            return !piece.bytes || std::all_of(piece.bytes.get(), piece.bytes.get() + piece.size,
                                               [](unsigned char byte) { return byte == filling; });
        });
    }

private:
    struct Free {
        void operator()(unsigned char* piece) const noexcept { std::free(piece); }
    };
    struct Piece {
        std::unique_ptr<unsigned char, Free> bytes;
        std::size_t size;
    };
    static constexpr unsigned char filling = 0xa5;

    static Piece newPiece(std::size_t size) {
        Piece piece{std::unique_ptr<unsigned char, Free>(static_cast<unsigned char*>(std::malloc(size))),
                    size};
        if (piece.bytes)
            std::memset(piece.bytes.get(), filling, size);
        return piece;
    }

    std::vector<Piece> my_pieces;
};

} // namespace

int main(int count, char** arguments) {
    if (count != 5) {
        std::fputs("korl-try-module is started by korl itself.\n", stderr);
        return 2;
    }
    korl::endWithParent(static_cast<pid_t>(std::strtol(arguments[4], nullptr, 10)));
    const rlimit no_core{0, 0}; // a crash here is expected
    ::setrlimit(RLIMIT_CORE, &no_core);
    limitOutput();
    std::set_terminate(onTerminate);
    isolateLibrary(arguments[1]);
    std::optional<UsedHeap> heap;
    if (std::string_view(arguments[3]) == "used")
        heap.emplace();
    try {
        send(words::loading);
        const korl::PluginHandle module = korl::openPlugin({arguments[1], {}, arguments[2]});
        send(words::unloading);
    } catch (const korl::Error& error) {
        send(words::refused + std::string(error.what()));
        ::_exit(1);
    }
    if (heap && !heap->isIntact()) {
        std::fputs("it wrote into memory that is not its own", stderr);
        std::abort();
    }
    send(words::passed);
    ::_exit(0); // nothing of the module is there any more that could be ended
}
