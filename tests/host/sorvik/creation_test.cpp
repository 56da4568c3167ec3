#include "tests/support/captured_trace.hpp"
#include "tests/support/plain_object.hpp"

#include <cstdio>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace {

using korl::test::PlainObject;
using korl::test::traceOf;
using Orvid::PhysicalSpace;
using Qelt::VActionNotifier;
using Qelt::VContext;
using Qelt::VCreationPreferences;
using Qelt::VCreator;
using Qelt::VCreatorBase;
using Qelt::VObject;
using Qelt::VSink;
using Tessan::StrongPtr;
using testing::ElementsAre;

/// Prints what happens to it, among the traces.
struct PrintingObject : PlainObject {
    PrintingObject(const std::string& name, const VCreationPreferences& preferences)
        : PlainObject(name, preferences) {
        std::printf("constructed %s, strength %s\n", name.c_str(),
                    findParameter("strength")->globalValue().Text().c_str());
    }
    void setup() override { std::printf("set up by %s, %s\n", creator()->Name().c_str(), requests()); }
    const char* requests() const { return processesRequests() ? "answers requests" : "answers none"; }
};

struct PrintingNotifier : VActionNotifier {
    void objectCreated(const StrongPtr<VObject>& object, VContext* context, VCreatorBase& creator) override {
        const auto& printing = static_cast<const PrintingObject&>(*object);
        std::printf("told of %s by %s, %s, %s\n", object->Name().c_str(), creator.Name().c_str(),
                    printing.requests(), context ? "asked for" : "not asked for");
    }
};

TEST(Creation, TakesItsStepsInOrder) {
    VCreator<PrintingObject, void> creator(std::string("Plain"), 0);
    const PrintingNotifier notifier;
    VContext context;
    VCreationPreferences preferences;
    preferences.prefer("strength", "0.75");
    StrongPtr<VObject> object;
    EXPECT_EQ(traceOf(100, [&] { object = creator.create("mine", &context, preferences); }),
              "VCreator::create(mine)\n"
              "constructed mine, strength 0.75\n"
              "VCreator::create(mine) got derived object\n"
              "set up by Plain, answers none\n"
              "told of mine by Plain, answers requests, asked for\n");
    EXPECT_EQ(object->creator().get(), &creator);
    EXPECT_EQ(object->controlBlock().strongCount(), 1);
    EXPECT_EQ(traceOf(99, [&] { creator.create(""); }),
              "constructed Plain, strength 0.5\n"
              "set up by Plain, answers none\n"
              "told of Plain by Plain, answers requests, not asked for\n");
}

struct FailingObject : PlainObject {
    FailingObject(const std::string& name, const VCreationPreferences& preferences)
        : PlainObject(name, preferences) {
        throw std::runtime_error("no light today");
    }
};

TEST(Creation, EndsWithTheConstructorThatThrows) {
    VCreator<FailingObject, void> creator(std::string("Failing"), 0);
    const PrintingNotifier notifier;
    const auto living = VObject::members().size();
    std::string failure;
    EXPECT_EQ(traceOf(100,
                      [&] {
                          try {
                              creator.create("mine");
                          } catch (const std::runtime_error& error) {
                              failure = error.what();
                          }
                      }),
              "VCreator::create(mine)\n"); // no derived object, and nobody is told
    EXPECT_EQ(failure, "no light today");
    EXPECT_EQ(VObject::members().size(), living);
}

TEST(Creation, TracesAtVerbosity100) {
    EXPECT_EQ(traceOf(99, [] { VCreator<PlainObject, void>(std::string("Plain"), 0).create("mine"); }), "");
    EXPECT_EQ(traceOf(100, [] { VCreator<PlainObject, void>(std::string("Plain"), 0).create("mine"); }),
              "VCreator::VCreator(Plain,0)\n"
              "VCreator::create(mine)\n"
              "VCreator::create(mine) got derived object\n");
}

TEST(CreationDeathTest, FlushesTheTraceOfANewCreator) {
    const auto makeCreatorAndEndAtOnce = [] {
        dup2(STDERR_FILENO, STDOUT_FILENO); // where the test looks
        std::setvbuf(stdout, nullptr, _IOFBF, 4096);
        Qelt::setVerbosity(100);
        const VCreator<PlainObject, void> creator(std::string("Plain"), 7);
        _exit(0); // writes nothing that is still in a buffer
    };
    EXPECT_EXIT(makeCreatorAndEndAtOnce(), testing::ExitedWithCode(0), "VCreator::VCreator\\(Plain,7\\)\n$");
}

template <class Input>
const std::type_info* inputTypeOfCreator() {
    return VCreator<PlainObject, Input>(std::string("Plain"), 0).inputType();
}

TEST(Creation, CreatorsAreSinksOfTheirInputType) {
    static_assert(std::is_base_of_v<VSink<PlainObject, void>, VCreator<PlainObject, void>>);
    static_assert(std::is_base_of_v<VSink<double, PlainObject>, VCreator<PlainObject, double>>);
    EXPECT_EQ(inputTypeOfCreator<void>(), nullptr);
    EXPECT_EQ(*inputTypeOfCreator<double>(), typeid(double));
    EXPECT_EQ(*inputTypeOfCreator<PhysicalSpace::point>(), typeid(PhysicalSpace::point));
    EXPECT_EQ(*inputTypeOfCreator<PhysicalSpace::vector>(), typeid(PhysicalSpace::vector));
    EXPECT_EQ((VCreator<PlainObject, double>(std::string("Plain"), 0).type()), typeid(PlainObject));
}

/// Writes down what it is told, and then does what it is told to do.
struct Listener : VActionNotifier {
    explicit Listener(std::string listener_name, std::vector<std::string>& listener_log)
        : name(std::move(listener_name)), log(listener_log) {}
    void objectCreated(const StrongPtr<VObject>& object, VContext*, VCreatorBase&) override {
        log.push_back(name + " " + object->Name());
        if (then)
            then();
    }
    std::string name;
    std::vector<std::string>& log;
    std::function<void()> then;
};

TEST(ActionNotifier, AllThatLiveAreToldInTheOrderOfTheirMaking) {
    VCreator<PlainObject, void> creator(std::string("Plain"), 0);
    std::vector<std::string> log;
    const Listener first("first", log);
    auto second = std::make_unique<Listener>("second", log);
    const Listener third("third", log);
    creator.create("a");
    EXPECT_THAT(log, ElementsAre("first a", "second a", "third a"));
    log.clear();
    second.reset();
    creator.create("b");
    EXPECT_THAT(log, ElementsAre("first b", "third b"));
}

TEST(ActionNotifier, MayComeAndGoWhileOthersAreTold) {
    VCreator<PlainObject, void> creator(std::string("Plain"), 0);
    std::vector<std::string> log;
    Listener first("first", log);
    auto going = std::make_unique<Listener>("going", log);
    std::unique_ptr<Listener> coming;
    const Listener last("last", log);
    first.then = [&] {
        if (!coming)
            coming = std::make_unique<Listener>("coming", log);
        going.reset();
    };
    creator.create("a");
    EXPECT_THAT(log, ElementsAre("first a", "last a"));
    log.clear();
    creator.create("b");
    EXPECT_THAT(log, ElementsAre("first b", "last b", "coming b"));
}

/// Writes its name down as it goes, and takes another object along.
struct LoggedObject final : VObject {
    LoggedObject(const std::string& name, std::vector<std::string>& object_log)
        : VObject(name, 0, {}), log(object_log) {}
    ~LoggedObject() override {
        log.push_back(Name());
        Tessan::Counted::destroy(taken_along.get());
    }
    std::vector<std::string>& log;
    Tessan::WeakPtr<VObject> taken_along;
};

TEST(DeletionOfInstances, TakesTheLatestFirst) {
    std::vector<std::string> log;
    const StrongPtr<VObject> a(new LoggedObject("a", log)), between(new PlainObject("between")),
        b(new LoggedObject("b", log)), c(new LoggedObject("c", log));
    EXPECT_EQ(VCreatorBase::deleteAllInstances(typeid(LoggedObject)), 3u);
    EXPECT_THAT(log, ElementsAre("c", "b", "a"));
    EXPECT_TRUE(between);
    EXPECT_EQ(VCreatorBase::deleteAllInstances(typeid(VObject)), 0u); // of exactly that type
    EXPECT_TRUE(between);
}

TEST(DeletionOfInstances, OneMayTakeAnotherAlong) {
    std::vector<std::string> log;
    const StrongPtr<VObject> a(new LoggedObject("a", log)), b(new LoggedObject("b", log));
    const StrongPtr<LoggedObject> c(new LoggedObject("c", log));
    c->taken_along = a;
    EXPECT_EQ(VCreatorBase::deleteAllInstances(typeid(LoggedObject)), 3u);
    EXPECT_THAT(log, ElementsAre("c", "a", "b"));
}

} // namespace
