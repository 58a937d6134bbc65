// The entry: how the program ends when an exception comes through a run.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "output/xml.h"
#include "run/errors.h"
#include "run/tovcore35.h"
#include "run/tovstart.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

/// A project without data: reading it is reported as an error, at which `hook` may throw.
class EarlyEnd : public testing::Test {
protected:
    EarlyEnd() {
        directory.write("p.tvp", "[Profile]\nTitle=\"t\"\nNbSamples=1\n[Data]\n[[Samples]]\n");
        directory.write("p.tvs", "TaskNumber=1\nXMLOutput=1\n");
        fresh.keep(TXmlTag::time);
    }
    ~EarlyEnd() override { release_project(); }

    int start(void (*hook)(ErrorType, my_string const&, int)) {
        Errors::ErrorProc = hook;
        char const* const arguments[] = {"tovcore", "p.tvp", "p.tvs"};
        return _main(3, arguments);
    }
    [[nodiscard]] bool finished() const {
        return directory.has("compfinished_final") ||
               fresh.console().find("Tovcore terminated gracefully") != std::string::npos;
    }

    test::FreshProcess fresh;
    test::ScratchDirectory directory;
};

TEST_F(EarlyEnd, DoesNotHappenToAProjectThatFails) {
    EXPECT_EQ(start(nullptr), 0);
    EXPECT_TRUE(finished());
    EXPECT_EQ(directory.read("compfinished_final"), "true\n");
    EXPECT_NE(directory.read("p.res/Tovenia_log.txt").find("Error during run of p.tvp"), std::string::npos);
}

TEST_F(EarlyEnd, ByAMemoryReportHasStatus0AndNoMarker) {
    EXPECT_EQ(start([](ErrorType, my_string const&, int) { throw ExceptionType{0}; }), 0);
    EXPECT_FALSE(finished());
}

TEST_F(EarlyEnd, ByExhaustedMemoryIsTold) {
    EXPECT_EQ(start([](ErrorType, my_string const&, int) { throw std::bad_alloc(); }), 0);
    EXPECT_FALSE(finished());
    EXPECT_NE(directory.read("p.res/Tovenia_log.txt").find("\nThe run ended early: "), std::string::npos);
}

TEST_F(EarlyEnd, ByAnyOtherExceptionIsTold) {
    EXPECT_EQ(start([](ErrorType, my_string const&, int) { throw std::length_error("too long"); }), 0);
    EXPECT_FALSE(finished());
    EXPECT_TRUE(directory.read("p.res/Tovenia_log.txt").ends_with("\nThe run ended early: too long\n"));
    EXPECT_FALSE(directory.has("p.res/p.tvp")) << "the cleaned copy goes all the same";
}

}  // namespace
}  // namespace tov
