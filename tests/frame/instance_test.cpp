// Measurement instances, the workspace exports and explicit host binding.
#include <gtest/gtest.h>

#include "frame/instance.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"

TEST(MeasurementInstance, CreatedOnceRegisteredAndReleased) {
  jqrt::Slot slot;
  jq::MeasurementInstance* m = nullptr;
  const int32_t registered = jqrt_cleanup_count();
  ASSERT_EQ(jq::acquire_measurement_instance(slot.get(), &m), 0);
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->count, 0);
  EXPECT_EQ(m->values, nullptr);
  jq::MeasurementInstance* again = nullptr;
  ASSERT_EQ(jq::acquire_measurement_instance(slot.get(), &again), 0);
  EXPECT_EQ(again, m);
  EXPECT_EQ(jqrt_cleanup_count(), registered + 1);
  // Disposing the context runs the clean-up, which frees the block.
  EXPECT_EQ(jqrt_dispose_context(), registered + 1);
}

TEST(MeasurementInstance, DisposingOneInstanceLeavesTheOthers) {
  jqrt::Slot a, b;
  jq::MeasurementInstance* m = nullptr;
  const int32_t registered = jqrt_cleanup_count();
  ASSERT_EQ(jq::acquire_measurement_instance(a.get(), &m), 0);
  ASSERT_EQ(jq::acquire_measurement_instance(b.get(), &m), 0);
  EXPECT_EQ(jqrt_dispose_instance(a.value()), 1);
  EXPECT_EQ(jqrt_dispose_instance(a.value()), 0) << "already forgotten";
  EXPECT_EQ(jqrt_cleanup_count(), registered + 1);
  EXPECT_EQ(jqrt_dispose_context(), registered + 1);
}

TEST(MeasurementInstance, UnreserveFreesValuesAndNullsTheSlot) {
  jqrt::Slot slot;
  EXPECT_EQ(MeasurementUnreserveProc(slot.get()), 0);
  jq::MeasurementInstance* m = nullptr;
  ASSERT_EQ(jq::acquire_measurement_instance_idp(slot.get(), &m), 0);
  m->values = static_cast<int32_t*>(std::malloc(3 * sizeof(int32_t)));
  m->count = 3;
  EXPECT_EQ(jqrt_cleanup_count(), 0) << "the _IDP form registers nothing";
  EXPECT_EQ(MeasurementUnreserveProc(slot.get()), 0);
  EXPECT_EQ(slot.value(), nullptr);
}

TEST(Workspace, PassesAnIncomingErrorThroughAndClearsOtherwise) {
  using Fn = int32_t (*)(JQErrorCluster*);
  auto init = [](JQErrorCluster* e) { return InitializeAnalysisWorkspaceH(nullptr, e); };
  for (Fn f : {Fn(init), Fn(EnableAnalysisWorkspaceH), Fn(DisableAnalysisWorkspaceH),
               Fn(UninitializeAnalysisWorkspaceH)}) {
    JQErrorCluster clear{0, -20003};
    EXPECT_EQ(f(&clear), 0);
    EXPECT_EQ(clear.status, 0);
    EXPECT_EQ(clear.code, 0);
    JQErrorCluster set{1, -20003};
    EXPECT_EQ(f(&set), 0);
    EXPECT_EQ(set.status, 1);
    EXPECT_EQ(set.code, -20003);
  }
  EXPECT_EQ(offsetof(JQErrorCluster, code), 4u);
}
