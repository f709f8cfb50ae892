# The variables that test programs run with, among them all options of the sanitizers.

# Threads that spin while they wait take the cores from the tests.
set(zpa_test_environment OMP_WAIT_POLICY=passive)
# A log that is cut short still tells what failed.
list(APPEND zpa_test_environment GTEST_BRIEF=1)

# Sizes that no memory holds are asked for on purpose; the answer must be that of the real allocator.
if(ZPA_SANITIZE MATCHES address)
    list(APPEND zpa_test_environment
        ASAN_OPTIONS=allocator_may_return_null=1:detect_stack_use_after_return=1:check_initialization_order=1
        LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/leaks.supp:print_suppressions=0
        UBSAN_OPTIONS=print_stacktrace=1)
elseif(ZPA_SANITIZE MATCHES thread)
    # This sanitizer's operators new cannot be made to fail; these tests need that.
    string(JOIN ":" needing_failures *NeedsNoMemory* *WithoutMemory* *NoMemory Subsample.RefusesInItsOrder
        OffsetArrays.ReportWhatCannotBeAllocated)
    list(APPEND zpa_test_environment GTEST_FILTER=-${needing_failures})
    # OpenMP's run-time is not instrumented. Archer, which comes with it, tells the sanitizer where threads meet.
    list(APPEND zpa_test_environment
        TSAN_OPTIONS=allocator_may_return_null=1:ignore_noninstrumented_modules=1)
    cmake_path(GET OpenMP_omp_LIBRARY PARENT_PATH openmp_folder)
    find_library(ZPA_ARCHER archer HINTS ${openmp_folder})
    if(ZPA_ARCHER)
        list(APPEND zpa_test_environment OMP_TOOL_LIBRARIES=${ZPA_ARCHER})
    else()
        message(WARNING "The archer tool is not installed; the thread sanitizer will see races that are none")
    endif()
endif()
