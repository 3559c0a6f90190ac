#!/usr/bin/env bash
# A test waits for a fact, not for a time: check_waits.sh TESTS. Use QTRY_VERIFY, QSignalSpy::wait or a condition in a
# loop. Where a span of time is itself the point, the line says so: "waits on purpose: REASON".
set -u
found=$(grep -rnE '\b(QTest::qWait|QTest::qSleep|QThread::(m|u)?sleep|std::this_thread::sleep_for|usleep)\(' "$1" \
    --include='*.cpp' --include='*.h' | grep -v 'waits on purpose: ')
[ -z "$found" ] || { echo "Bare waits:"; echo "$found"; exit 1; }
echo "no bare waits"
