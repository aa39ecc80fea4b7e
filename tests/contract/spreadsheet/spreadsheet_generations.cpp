#include "tests/contract/spreadsheet/spreadsheet_context.h"

namespace contract {

namespace {

std::string nameOf(const testing::TestParamInfo<owc::Generation>& info) {
  return "Generation" + std::to_string(static_cast<int>(info.param));
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Component, Sheets,
                         testing::Values(owc::Generation::Office2000, owc::Generation::OfficeXP,
                                         owc::Generation::Office2003),
                         nameOf);

}  // namespace contract
