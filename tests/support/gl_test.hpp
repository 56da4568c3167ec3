#pragma once

#include "shell/render/gl_context.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace korl::test {

/// Base of every suite that needs an OpenGL context. The process has one debug context, current in each test.
/// A test fails on the first error that the driver reports (where it has KHR_debug, within the call that made
/// it), and on a glGetError left at its end. Without a context the test fails; it is never skipped.
class GLTest : public ::testing::Test {
public:
    /// Made on first use and kept until the process ends: a software rasteriser that is unloaded earlier
    /// leaves a few bytes behind, which a leak check would take for ours.
    static GLContext& context();

protected:
    void SetUp() override;
    void TearDown() override;
};

/// While one of these lives, the driver's errors are collected instead of failing the test. None has to come:
/// drivers differ in whether they call a shader that they refuse an error of OpenGL's. Clears glGetError at
/// its end.
class ToleratedGLErrors {
public:
    ToleratedGLErrors();
    ~ToleratedGLErrors();
    ToleratedGLErrors(const ToleratedGLErrors&) = delete;
    ToleratedGLErrors& operator=(const ToleratedGLErrors&) = delete;

    /// What the driver said, a text per error. Drivers without KHR_debug say nothing.
    const std::vector<std::string>& messages() const { return my_messages; }

private:
    friend void handleGLError(const std::string& message);

    std::vector<std::string> my_messages;
    ToleratedGLErrors* my_outer;
};

/// The same for errors of which at least one must come.
class ExpectedGLErrors : public ToleratedGLErrors {
public:
    ~ExpectedGLErrors();
};

} // namespace korl::test
