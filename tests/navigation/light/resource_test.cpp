// The module's Qt resource: the arrays, field by field, and what Qt makes of them. Qt's two functions are put
// in front of the library's, write down how they were called, and call it.

#include "navigation/light/Resource.cpp" // NOLINT(bugprone-suspicious-include): its arrays
#include "tests/support/loaded_module.hpp"
#include "tests/support/temporary_folder.hpp"

#include <algorithm>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <iterator>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QResource>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Call {
    std::string name;
    int version;
    const unsigned char *tree, *names, *data;
};

std::vector<Call> calls;
bool unregistering_throws = false;

using QtFunction = bool(int, const unsigned char*, const unsigned char*, const unsigned char*);

/// The library's own function. @param symbol its mangled name.
QtFunction* libraryFunction(const char* symbol) {
    return reinterpret_cast<QtFunction*>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

Q_CORE_EXPORT QtFunction qRegisterResourceData, qUnregisterResourceData;

bool qRegisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                           const unsigned char* data) {
    calls.push_back({"register", version, tree, names, data});
    return libraryFunction("_Z21qRegisterResourceDataiPKhS0_S0_")(version, tree, names, data);
}

bool qUnregisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                             const unsigned char* data) {
    calls.push_back({"unregister", version, tree, names, data});
    if (unregistering_throws)
        throw std::runtime_error("Qt is upset");
    return libraryFunction("_Z23qUnregisterResourceDataiPKhS0_S0_")(version, tree, names, data);
}

// Qt's macros work in the global namespace alone.
static void initResource() {
    Q_INIT_RESOURCE(tovek_light);
}
static void cleanupResource() {
    Q_CLEANUP_RESOURCE(tovek_light);
}

namespace {

using korl::test::LoadedModule;
using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

constexpr const char* path = ":/light/Torch.png";
constexpr std::int64_t changed = 1764071729232; ///< milliseconds since 1970

Bytes picture() {
    const std::string bytes = korl::test::bytesOf(PROJECT_SOURCE_DIR "/navigation/light/light/Torch.png");
    return {bytes.begin(), bytes.end()};
}

/// Reads big-endian numbers one after the other.
class Reader {
public:
    explicit Reader(const unsigned char* bytes) : my_bytes(bytes) {}

    std::uint64_t number(int size) {
        std::uint64_t value = 0;
        for (int i = 0; i < size; ++i)
            value = value * 256 + *my_bytes++;
        return value;
    }

    /// @returns the fields of the given sizes.
    std::vector<std::uint64_t> fields(const std::vector<int>& sizes) {
        std::vector<std::uint64_t> values;
        values.reserve(sizes.size());
        for (const int size : sizes)
            values.push_back(number(size));
        return values;
    }

private:
    const unsigned char* my_bytes;
};

TEST(ResourceTree, HasARootAFolderAndAFile) {
    EXPECT_EQ(sizeof tovek::tree, 3u * 22);
    Reader tree(tovek::tree);
    // name, flags (2: folder), children, first child, last change
    EXPECT_THAT(tree.fields({4, 2, 4, 4, 8}), ElementsAre(0, 2, 1, 1, 0));
    EXPECT_THAT(tree.fields({4, 2, 4, 4, 8}), ElementsAre(0, 2, 1, 2, 0));
    // name, flags (0: a file as it is), territory (any), language (C), data, last change
    EXPECT_THAT(tree.fields({4, 2, 2, 2, 4, 8}), ElementsAre(16, 0, 0, 1, 0, 1764071729232));
}

/// The well-known hash of ELF symbol tables, which Qt took: here with the upper bits folded one by one.
std::uint64_t hashOf(const std::string& name) {
    std::uint64_t hash = 0;
    for (const char character : name) {
        hash = hash * 16 + static_cast<std::uint64_t>(character);
        const std::uint64_t upper = (hash >> 28) & 0xf;
        hash = (hash ^ (upper << 5)) % 0x10000000;
    }
    return hash;
}

TEST(ResourceNames, HaveLengthHashAndUtf16) {
    EXPECT_EQ(sizeof tovek::names, 2u * (2 + 4) + 2 * 5 + 2 * 9);
    Reader names(tovek::names);
    for (const auto& [name, hash] : {std::pair<std::string, std::uint32_t>{"light", 0x0072fdf4},
                                     std::pair<std::string, std::uint32_t>{"Torch.png", 0x089be187}}) {
        EXPECT_EQ(names.number(2), name.size());
        EXPECT_EQ(hashOf(name), hash);
        EXPECT_EQ(names.number(4), hash);
        for (const char character : name)
            EXPECT_EQ(names.number(2), static_cast<std::uint64_t>(character));
    }
}

TEST(ResourceData, IsThePictureWithItsLength) {
    const Bytes expected = picture();
    ASSERT_EQ(sizeof tovek::data, 4 + expected.size());
    EXPECT_EQ(Reader(tovek::data).number(4), 45023u);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), tovek::data + 4));
}

TEST(Resource, ResolvesFromLoadToUnload) {
    EXPECT_FALSE(QFile::exists(path));
    {
        const LoadedModule module;
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray content = file.readAll();
        EXPECT_EQ(Bytes(content.begin(), content.end()), picture());
        EXPECT_EQ(QFileInfo(path).lastModified().toMSecsSinceEpoch(), changed);
    }
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_FALSE(QResource(path).isValid());
    EXPECT_FALSE(LoadedModule::isInProcess());
}

TEST(Resource, IsForEveryLocaleAndNotCompressed) {
    const LoadedModule module;
    for (const QLocale& locale : {QLocale(), QLocale::c(), QLocale(QLocale::Icelandic, QLocale::Iceland)}) {
        const QResource resource(path, locale);
        EXPECT_TRUE(resource.isValid());
        EXPECT_EQ(resource.compressionAlgorithm(), QResource::NoCompression);
        EXPECT_EQ(resource.size(), 45023);
    }
    EXPECT_EQ(QDir(":/light").entryList(), QStringList("Torch.png"));
}

TEST(Resource, IsWithdrawnAsItWasRegistered) {
    calls.clear();
    {
        const LoadedModule module;
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_TRUE(std::equal(std::begin(tovek::tree), std::end(tovek::tree), calls[0].tree));
        EXPECT_TRUE(std::equal(std::begin(tovek::names), std::end(tovek::names), calls[0].names));
    }
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].name, "register");
    EXPECT_EQ(calls[1].name, "unregister");
    for (const Call& call : calls)
        EXPECT_EQ(call.version, 3);
    EXPECT_EQ(calls[0].tree, calls[1].tree);
    EXPECT_EQ(calls[0].names, calls[1].names);
    EXPECT_EQ(calls[0].data, calls[1].data);
    EXPECT_NE(calls[0].data, tovek::data); // the module's own
}

TEST(Resource, UnitAndFunctionsRegisterTheSameData) {
    calls.clear();
    tovek::registerResource().reset();
    EXPECT_EQ(qInitResources_tovek_light(), 1);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_EQ(qCleanupResources_tovek_light(), 1);
    EXPECT_FALSE(QFile::exists(path));
    std::vector<std::string> names;
    names.reserve(calls.size());
    for (const Call& call : calls) {
        names.push_back(call.name);
        EXPECT_EQ(call.version, 3);
        EXPECT_EQ(call.tree, tovek::tree);
        EXPECT_EQ(call.names, tovek::names);
        EXPECT_EQ(call.data, tovek::data);
    }
    EXPECT_THAT(names, ElementsAre("register", "unregister", "register", "unregister"));
}

TEST(Resource, CanBeRegisteredOnceMore) {
    const auto unit = tovek::registerResource();
    cleanupResource();
    EXPECT_FALSE(QFile::exists(path));
    initResource();
    EXPECT_TRUE(QFile::exists(path));
}

TEST(ResourceDeathTest, ExceptionFromQtAtUnloadEndsTheProcess) {
    EXPECT_DEATH(
        {
            LoadedModule module;
            unregistering_throws = true;
            module.unload();
        },
        "Qt is upset");
}

} // namespace
