#include "document/editing/OVFileOperation.h"

#include <gtest/gtest.h>

#include <vector>

using State = OVFileOperation::State;

TEST(OVFileOperation, EachStateIsWhatItsNameSays) {
  struct Row {
    State state;
    bool active, loading, writing;
  };
  for (const Row& row : std::vector<Row>{{State::none, false, false, false},
                                         {State::openingImport, true, false, false},
                                         {State::opening, true, true, false},
                                         {State::importing, true, true, false},
                                         {State::saving, true, false, true},
                                         {State::exporting, true, false, true}}) {
    OVFileOperation operation;
    operation.begin(row.state);
    EXPECT_EQ(operation.state(), row.state);
    EXPECT_EQ(operation.isActive(), row.active);
    EXPECT_EQ(operation.isLoading(), row.loading);
    EXPECT_EQ(operation.isWriting(), row.writing);
    operation.end();
    EXPECT_FALSE(operation.isActive());
  }
}

TEST(OVFileOperation, TheHandlerFindsTheNewState) {
  OVFileOperation operation;
  std::vector<State> seen;
  operation.setChangeHandler([&] { seen.push_back(operation.state()); });
  operation.begin(State::openingImport);
  operation.begin(State::importing);
  operation.end();
  EXPECT_EQ(seen, (std::vector<State>{State::openingImport, State::importing, State::none}));
}
