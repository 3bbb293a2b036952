#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdlib>
#include <iostream>

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    const QCoreApplication application(count, arguments);
    const int status = RUN_ALL_TESTS();
    const int skipped = testing::UnitTest::GetInstance()->skipped_test_count();
    if (skipped == 0 || std::getenv("TAVIK_REQUIRE_DAEMONS") == nullptr) return status;
    std::cerr << skipped << " tests were skipped, though TAVIK_REQUIRE_DAEMONS is set\n";
    return 1;
}
