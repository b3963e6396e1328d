#include <tarn/study/StudyJournal.hpp>

#include <tarn/study/CaseRecord.hpp>

#include "support/TestFolder.hpp"

#include <loam/FileError.hpp>

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace StudyJournalTest {

using Tarn::CaseResult;
using Tarn::StudyJournal;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class StudyJournalTest : public testing::Test {
protected:
    std::string failureOf(const std::string& identity) const
    {
        const std::string before = contentOf(m_path);
        try {
            const StudyJournal journal{m_path, identity};
        } catch (const Loam::FileError& error) {
            EXPECT_EQ(contentOf(m_path), before) << "the file has changed";
            return error.what();
        }
        return "none";
    }

    const TestFolder m_folder;
    const std::string m_path = m_folder.file("t.study");
    const CaseResult m_first{.number = 3, .rows = {{"1"}}};
    const CaseResult m_second{.number = 1, .rows = {{"2"}}, .hasFailed = true};
};

} // namespace

TEST_F(StudyJournalTest, returnsTheResultsOfAnEarlierProcess)
{
    {
        StudyJournal journal{m_path, "id"};
        EXPECT_THAT(journal.takeResults(), IsEmpty());
        journal.add(m_first);
        journal.add(m_second);
    }
    EXPECT_THAT((StudyJournal{m_path, "id"}.takeResults()), ElementsAre(m_first, m_second));
}

TEST_F(StudyJournalTest, hasEachResultAsSoonAsItIsAdded)
{
    StudyJournal journal{m_path, "id"};
    journal.add(m_first);
    EXPECT_EQ(contentOf(m_path), "id\n" + recordOf(m_first));
}

TEST_F(StudyJournalTest, returnsTheLastResultOfACase)
{
    CaseResult again = m_first;
    again.rows = {{"5"}};
    {
        StudyJournal journal{m_path, "id"};
        journal.add(m_first);
        journal.add(m_second);
        journal.add(again);
    }
    EXPECT_THAT((StudyJournal{m_path, "id"}.takeResults()), ElementsAre(again, m_second));
}

TEST_F(StudyJournalTest, dropsAnIncompleteRecordAtEachLength)
{
    const std::string whole = "id\n" + recordOf(m_first);
    const std::string record = recordOf(m_second);
    for (std::size_t length = 0; length < record.size(); ++length) {
        m_folder.write("t.study", whole + record.substr(0, length));
        StudyJournal journal{m_path, "id"};
        EXPECT_THAT(journal.takeResults(), ElementsAre(m_first));
        journal.add(m_second);
        EXPECT_EQ(contentOf(m_path), whole + record);
    }
}

TEST_F(StudyJournalTest, beginsAgainIfOnlyTheIdentityIsIncomplete)
{
    for (const char* text : {"", "i", "id"}) {
        m_folder.write("t.study", text);
        StudyJournal journal{m_path, "id"};
        EXPECT_THAT(journal.takeResults(), IsEmpty());
        EXPECT_EQ(contentOf(m_path), "id\n");
    }
}

TEST_F(StudyJournalTest, refusesTheFileOfAnotherStudy)
{
    m_folder.write("t.study", "id\n");
    EXPECT_THAT(failureOf("other"), HasSubstr("t.study belongs to another study"));
    m_folder.write("t.study", "step,a\n0,1\n");
    EXPECT_THAT(failureOf("id"), HasSubstr("belongs to another study"));
}

TEST_F(StudyJournalTest, refusesADamagedRecord)
{
    m_folder.write("t.study", "id\n" + recordOf(m_first) + "{}\n" + recordOf(m_second));
    EXPECT_THAT(failureOf("id"), HasSubstr("t.study:3: the record of a case is damaged"));
}

TEST_F(StudyJournalTest, isUsedByOneProcessAtATime)
{
    const StudyJournal journal{m_path, "id"};
    EXPECT_THAT(failureOf("id"), HasSubstr("is in use by another process"));
}

TEST_F(StudyJournalTest, refusesAFolderThatDoesNotExist)
{
    EXPECT_THROW((StudyJournal{m_folder.file("none/t.study"), "id"}), Loam::FileError);
}

TEST_F(StudyJournalTest, reportsAFullDisk)
{
    std::filesystem::create_symlink("/dev/full", m_path);
    EXPECT_THROW((StudyJournal{m_path, "id"}), Loam::FileError);
}

TEST_F(StudyJournalTest, isRemovedWhenItIsClosedWithoutRecords)
{
    {
        const StudyJournal journal{m_path, "id"};
        EXPECT_THAT(m_folder.names(), ElementsAre("t.study"));
    }
    EXPECT_THAT(m_folder.names(), IsEmpty());
}

TEST_F(StudyJournalTest, isRemoved)
{
    StudyJournal journal{m_path, "id"};
    journal.remove();
    EXPECT_THAT(m_folder.names(), IsEmpty());
}

} // namespace StudyJournalTest
