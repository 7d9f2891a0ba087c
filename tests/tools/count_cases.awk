# SPDX-License-Identifier: MIT
# Reads ctest's LastTest.log and prints "PASSED FAILED" in test cases. A test that is not a GoogleTest suite is one
# case; a suite that died before its own count is one failed case.
/^[0-9]+\/[0-9]+ Testing: / { ok = 0; bad = 0 }
/^\[  PASSED  \] [0-9]+ test/ { ok = $4 }
/^\[  FAILED  \] [0-9]+ test/ { bad = $4 }
/^Test Passed\.$/ { passed += ok ? ok : 1 }
/^Test Failed\.$/ || /^Test timed out/ { passed += ok; failed += bad ? bad : 1 }
END { print passed + 0, failed + 0 }
