#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

/// A file in the working folder, removed when the object is destroyed.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string_view content, const std::string& suffix = "")
    {
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        m_name = std::string("quakes-") + test.test_suite_name() + '-' + test.name() + suffix + ".json";
        std::ofstream stream{m_name, std::ios::binary | std::ios::trunc};
        stream.write(content.data(), static_cast<std::streamsize>(content.size()));
        stream.close();
        EXPECT_TRUE(stream) << m_name << " cannot be written";
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { std::remove(m_name.c_str()); }

    const std::string& name() const noexcept { return m_name; }

private:
    std::string m_name;
};
