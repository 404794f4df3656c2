// TCTConnection transactions: record changes committed together or discarded, errors raised,
// open cursors kept, and a connection deactivated in the middle of a transaction.
#include <gtest/gtest.h>

#include "TableFixture.h"

namespace Ctdb::testing {
namespace {

class TransactionTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    Open();
  }
};

TEST_F(TransactionTest, CommitKeepsEveryChangeAndRollbackNone) {
  ASSERT_EQ(Append(1, 0), 0);
  EXPECT_FALSE(Conn->InTransaction());
  Conn->StartTransaction();
  EXPECT_TRUE(Conn->InTransaction());
  for (int32_t id = 2; id <= 50; ++id) ASSERT_EQ(Append(id, 0), 0);
  EXPECT_EQ(Count(), 50);  // the transaction sees its own changes
  Conn->Commit();
  EXPECT_FALSE(Conn->InTransaction());
  EXPECT_EQ(Count(), 50);

  Conn->StartTransaction();
  for (int32_t id = 51; id <= 60; ++id) ASSERT_EQ(Append(id, 0), 0);
  Conn->Rollback();
  EXPECT_FALSE(Conn->InTransaction());
  EXPECT_EQ(Count(), 50);
  UseIndex("ById");
  const std::vector<int32_t> ids = Walk(true);
  ASSERT_EQ(ids.size(), 50u);
  EXPECT_EQ(ids.front(), 1);
  EXPECT_EQ(ids.back(), 50);

  // The cursor stays usable: a later change outside any transaction is kept.
  ASSERT_EQ(Append(61, 0), 0);
  EXPECT_EQ(Count(), 51);
}

TEST_F(TransactionTest, ARejectedRecordDoesNotSpoilTheTransactionNorMisuseTheState) {
  Conn->StartTransaction();
  ASSERT_EQ(Append(1, 0), 0);
  EXPECT_EQ(Append(1, 0), 2);  // unique key clash: nothing written
  ASSERT_EQ(Append(2, 0), 0);
  Conn->Commit();
  EXPECT_EQ(Count(), 2);
  UseIndex("ById");
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{1, 2}));

  // Misuse raises the engine's number and keeps the state.
  EXPECT_EQ(Raised([&] { Conn->Commit(); }).ErrorCode, CT_ETRAN);
  EXPECT_EQ(Raised([&] { Conn->Rollback(); }).ErrorCode, CT_ETRAN);
  Conn->StartTransaction();
  EXPECT_EQ(Raised([&] { Conn->StartTransaction(); }).ErrorCode, CT_ETRAN);
  EXPECT_TRUE(Conn->InTransaction());  // the first one is still open
  ASSERT_EQ(Append(7, 0), 0);
  Conn->Commit();
  EXPECT_EQ(Count(), 3);
}

TEST_F(TransactionTest, DeactivatingRollsBackAndAnInactiveConnectionRefuses) {
  Conn->StartTransaction();
  ASSERT_EQ(Append(1, 0), 0);
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  Conn->SetActive(false);
  EXPECT_FALSE(Conn->InTransaction());
  EXPECT_EQ(Raised([&] { Conn->StartTransaction(); }).ErrorCode, kCtNotActive);
  EXPECT_EQ(Raised([&] { Conn->Commit(); }).ErrorCode, kCtNotActive);

  Conn->SetActive(true);
  Open();
  EXPECT_EQ(Count(), 0);
  Conn->StartTransaction();  // a new one can begin
  Conn->Rollback();
}

}  // namespace
}  // namespace Ctdb::testing
