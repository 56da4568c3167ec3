#include "shell/session/shared_shell.hpp"

#include <sorvik/initialization.hpp>

#include <atomic>
#include <epoxy/egl.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace {

using korl::SharedShell;
using korl::Shell;

std::unique_ptr<SharedShell> newShell() {
    return std::make_unique<SharedShell>(std::vector<std::filesystem::path>{},
                                         std::vector<std::filesystem::path>{KORL_MODULES});
}

const korl::Mesh triangle{
    "triangle", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, std::vector<glm::vec3>(3, {0, 0, 1}), {}, {0, 1, 2}};

/// A scene that is quick to draw, with a light.
void fill(Shell& shell) {
    shell.scene().create("Sun", "sun");
    shell.scene().addMesh(triangle);
}

TEST(SharedShellTest, AThousandLeaveNothingBehind) {
    for (int i = 0; i < 1000; ++i) {
        const auto shell = newShell();
        shell->use([](Shell& used) {
            fill(used);
            used.scene().addView("left");
            used.scene().setParameterText("sun", "latitude", "52", "left");
        });
    }
    EXPECT_TRUE(VInitialization::plugins().empty());
    EXPECT_TRUE(Qelt::VObject::members().empty());
}

TEST(SharedShellTest, ModulesStayUntilTheLastShellGoes) {
    auto first = newShell();
    const auto second = newShell();
    second->use(fill);
    first.reset();
    EXPECT_EQ(VInitialization::plugins().size(), 1u);
    EXPECT_EQ(second->use([](Shell& used) { return used.scene().objects().size(); }), 1u);
    second->close();
    EXPECT_TRUE(VInitialization::plugins().empty());
}

TEST(SharedShellTest, NothingIsDoneAfterItsEnd) {
    const auto shell = newShell();
    EXPECT_FALSE(shell->isClosed());
    shell->close();
    shell->close();
    EXPECT_TRUE(shell->isClosed());
    EXPECT_THROW(shell->use(fill), korl::ClosedShell);
}

TEST(SharedShellTest, WhateverIsThrownBecomesAnErrorAndTheShellGoesOn) {
    const auto shell = newShell();
    EXPECT_THROW(shell->use([](Shell&) { throw 3; }), korl::Error);
    EXPECT_THROW(shell->use([](Shell&) { throw std::out_of_range("far"); }), korl::Error);
    EXPECT_THROW(shell->use([](Shell&) { throw korl::UnknownName("none"); }), korl::UnknownName);
    shell->use(fill);
}

TEST(SharedShellTest, WorkWithinWorkIsRefusedInsteadOfWaitingForItself) {
    const auto shell = newShell(), other = newShell();
    shell->use([&](Shell&) {
        EXPECT_THROW(shell->use(fill), korl::Error);
        EXPECT_THROW(other->use(fill), korl::Error);
        EXPECT_THROW(other->close(), korl::Error);
        EXPECT_THROW(newShell(), korl::Error);
    });
    other->use(fill);
}

TEST(SharedShellTest, ThreadsTakeTurnsAcrossShells) {
    const std::vector<std::unique_ptr<SharedShell>> shells = [] {
        std::vector<std::unique_ptr<SharedShell>> made;
        made.push_back(newShell());
        made.push_back(newShell());
        return made;
    }();
    std::atomic<int> inside = 0, max_inside = 0;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            for (int turn = 0; turn < 200; ++turn)
                shells[i % 2]->use([&](Shell& used) {
                    max_inside = std::max(max_inside.load(), ++inside);
                    const std::string name = used.scene().create("Torch").Name();
                    used.scene().setParameterText(name, "elevation", "3");
                    used.scene().remove(name);
                    --inside;
                });
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(max_inside, 1);
}

TEST(SharedShellGLTest, EachThreadMayDrawAndTheLastMayBeAnother) {
    auto shell = newShell();
    shell->use(fill);
    const auto draw = [&] { return shell->use([](Shell& used) { return used.render({16, 16}).pixels; }); };
    const auto expected = draw();
    std::atomic<int> different = 0;
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] { different += draw() != expected; });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(different, 0);
    std::thread([&] { shell.reset(); }).join();
}

TEST(SharedShellGLTest, OneShellDrawsAfterAnotherHasGone) {
    auto first = newShell();
    const auto second = newShell();
    const auto draw = [](SharedShell& shell) {
        return shell.use([](Shell& used) { return used.render({16, 16}).pixels; });
    };
    first->use(fill);
    second->use(fill);
    EXPECT_EQ(draw(*first), draw(*second));
    const auto expected = draw(*first);
    first.reset();
    EXPECT_EQ(draw(*second), expected);
}

TEST(SharedShellGLTest, ReportsAreGivenOnce) {
    const auto shell = newShell();
    shell->use([](Shell& used) {
        used.scene().create("Torch", "torch");
        used.scene().addMesh(triangle);
        used.render({16, 16, korl::RenderPath::fixed});
    });
    const auto reports = shell->takeReports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(reports[0].find("torch"), std::string::npos);
    EXPECT_TRUE(shell->takeReports().empty());
}

TEST(SharedShellGLTest, ShellGoesThoughAnotherThreadHasItsContext) {
    std::vector<std::string> reports;
    auto shell = std::make_unique<Shell>([&](const std::string& text) {
        reports.push_back(text);
        throw std::runtime_error("whoever is told has troubles, too");
    });
    shell->scene().addMesh(triangle);
    shell->render({16, 16});
    shell->releaseContext();
    std::atomic<bool> is_taken = false, is_over = false;
    std::thread other([&] {
        shell->context().makeCurrent();
        is_taken = true;
        is_taken.notify_all();
        is_over.wait(false);
        eglReleaseThread();
    });
    is_taken.wait(false);
    shell.reset();
    is_over = true;
    is_over.notify_all();
    other.join();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(reports[0].find("can't be made current: eglMakeCurrent"), std::string::npos) << reports[0];
}

} // namespace
