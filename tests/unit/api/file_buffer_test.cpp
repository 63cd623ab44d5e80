// The file reader of an update.
#include "api/src/function/file/linux/FileBuffer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "tests/unit/support/flash_image.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

class FileBuffer : public testing::Test {
protected:
    ~FileBuffer() override { buffer->close(buffer); }
    QRX_U32 open(std::string name, QRX_U32 step) { return buffer->open_for_read(buffer, name.data(), step); }
    std::string read()
    {
        const QRX_U8* data = buffer->read(buffer);
        return data != nullptr ? std::string(data, data + buffer->m_step_length) : "null";
    }

    Libc libc;
    Scratch scratch;
    PQRXFileBuffer buffer = CreateQRXFileBufferInstance();
};

TEST_F(FileBuffer, IsClosedAtFirst)
{
    EXPECT_EQ(buffer->m_file, -1);
    EXPECT_EQ(buffer->read(buffer), nullptr);
    EXPECT_EQ(buffer->get_offset(buffer), 0U);
    EXPECT_EQ(buffer->get_offset(nullptr), 0U);
    EXPECT_EQ(buffer->get_file_length(buffer), 0U);
    EXPECT_EQ(buffer->seek, nullptr);
}

TEST_F(FileBuffer, ReadsInStepsAndLeavesTheRestOfTheBuffer)
{
    ASSERT_EQ(open(scratch.file("f", "abcdefg"), 4), 0U);
    EXPECT_EQ(buffer->get_file_length(buffer), 7U);
    EXPECT_EQ(read(), "abcd");
    EXPECT_EQ(buffer->get_offset(buffer), 4U);
    EXPECT_EQ(buffer->m_got, 4U);
    EXPECT_EQ(buffer->get_file_length(buffer), 7U);
    EXPECT_EQ(read(), "efgd");
    EXPECT_EQ(buffer->get_offset(buffer), 8U);
    EXPECT_EQ(buffer->m_got, 3U);
    EXPECT_EQ(read(), "efgd");
    EXPECT_EQ(buffer->get_offset(buffer), 12U);
    EXPECT_EQ(buffer->m_got, 0U);
}

TEST_F(FileBuffer, AFileShorterThanAStepIsFilledUpWithZeros)
{
    ASSERT_EQ(open(scratch.file("f", "ab"), 4), 0U);
    EXPECT_EQ(read(), std::string("ab\0\0", 4));
}

TEST_F(FileBuffer, AStepOfZeroHasNoBuffer)
{
    ASSERT_EQ(open(scratch.file("f", "ab"), 0), 0U);
    EXPECT_EQ(buffer->m_data, nullptr);
    EXPECT_EQ(buffer->read(buffer), nullptr);
    EXPECT_EQ(buffer->get_offset(buffer), 0U);
    EXPECT_EQ(buffer->get_file_length(buffer), 2U);
}

TEST_F(FileBuffer, SingleQuotesAreTakenOffTheName)
{
    const std::string path = scratch.file("f", "ab");
    EXPECT_EQ(open("'" + path + "'", 2), 0U);
    EXPECT_EQ(open("'''" + path, 2), 0U);
    EXPECT_EQ(open(path + "'", 2), 0U);
    EXPECT_EQ(open(path + "''", 2), 1U);  // one alone is taken off the end
    EXPECT_EQ(open("'", 2), 1U);
    EXPECT_EQ(open("", 2), 1U);
    std::string quoted = "'" + path + "'";
    EXPECT_EQ(buffer->open_for_read(buffer, quoted.data(), 2), 0U);
    EXPECT_STREQ(quoted.c_str(), ("'" + path).c_str());  // in the caller's text
}

TEST_F(FileBuffer, OpeningAgainStartsAnewAndClosesTheFileBefore)
{
    ASSERT_EQ(open(scratch.file("f", "abcdef"), 3), 0U);
    read();
    const int before = buffer->m_file;
    ASSERT_EQ(open(scratch.file("g", "xy"), 4), 0U);
    EXPECT_EQ(libc.closed, std::vector<int>{before});
    EXPECT_EQ(buffer->get_offset(buffer), 0U);
    EXPECT_EQ(read(), std::string("xy\0\0", 4));
}

TEST_F(FileBuffer, WhatIsNoReadableRegularFileIsRefused)
{
    EXPECT_EQ(open(scratch.path("none"), 4), 1U);
    EXPECT_EQ(buffer->m_file, -1);
    EXPECT_EQ(open(scratch.path(""), 4), 1U);  // a directory
    EXPECT_EQ(buffer->m_file, -1);
    EXPECT_EQ(open("/dev/zero", 4), 1U);
    ASSERT_EQ(mkfifo(scratch.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(open(scratch.path("pipe"), 4), 1U);
    libc.refuse("/image", EACCES);
    EXPECT_EQ(open("/image", 4), 1U);
    EXPECT_EQ(buffer->open_for_read(buffer, nullptr, 4), 1U);
    EXPECT_EQ(buffer->m_data, nullptr);
}

TEST_F(FileBuffer, ShortOfMemoryNothingIsOpen)
{
    const std::string path = scratch.file("f", "abcdef");
    libc.failAllocation(1);
    EXPECT_EQ(open(path, 3), 1U);
    EXPECT_EQ(buffer->m_file, -1);
    libc.failAllocation(1);
    EXPECT_EQ(CreateQRXFileBufferInstance(), nullptr);
}

TEST_F(FileBuffer, AFailedReadLeavesTheOffset)
{
    ASSERT_EQ(open(scratch.file("f", "abcdef"), 3), 0U);
    EXPECT_EQ(read(), "abc");
    libc.onRead = [](int, void*, std::size_t) {
        errno = EIO;
        return -1;
    };
    EXPECT_EQ(read(), "abc");
    EXPECT_EQ(buffer->get_offset(buffer), 3U);
    EXPECT_EQ(buffer->m_got, 0U);
}

TEST_F(FileBuffer, AReadThatIsBrokenOffGoesOn)
{
    ASSERT_EQ(open(scratch.file("f", ""), 4), 0U);
    int calls = 0;
    libc.onRead = [&](int, void* data, std::size_t count) -> ssize_t {
        EXPECT_EQ(count, calls < 2 ? 4U : 3U);
        errno = EINTR;
        if (++calls == 1) {
            return -1;
        }
        const std::size_t length = calls == 2 ? 1 : 3;
        std::memset(data, 'a' + calls, length);
        return static_cast<ssize_t>(length);
    };
    EXPECT_EQ(read(), "cddd");
    EXPECT_EQ(buffer->m_got, 4U);
    EXPECT_EQ(calls, 3);
}

TEST_F(FileBuffer, AFileThatCannotBeMeasuredHasNoLength)
{
    ASSERT_EQ(open(scratch.file("f", "abc"), 0), 0U);
    libc.onLseek = [](int, off_t) { return -1; };
    EXPECT_EQ(buffer->get_file_length(buffer), 0U);
}

}  // namespace
