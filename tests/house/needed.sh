#!/usr/bin/env bash
# No change goes untested because a label is missing: needed.sh BUILD
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$1
failed=0
fail() {
  echo "$1" >&2
  failed=1
}
# The tests that a change of the file needs, in one line between blanks.
needs() {
  echo " $(tools/needed-tests.sh "$build" "$1" | sed -n 's/^  \([a-z0-9_]*\)$/\1/p' | tr '\n' ' ')"
}

unlabelled=$(ctest --test-dir "$build" -N -LE . | sed -n 's/^ *Test *#[0-9]*: //p')
[ -z "$unlabelled" ] || fail "Tests without a label, made past merchantry_check: $unlabelled"

labels=$(ctest --test-dir "$build" --print-labels)
for folder in $(find app base catalog customers demo exchange inventory programs purchasing reports setup tools ui -name '*.cpp' -printf '%h\n' | sort -u); do
  # What draws is built only where Qt is; the sheet of pages is for eyes, no test looks at it.
  case $folder in
    tools/reportsheet) continue ;;
    ui/qt | programs/merchantry) [ -f "$build/ui/qt/CTestTestfile.cmake" ] || continue ;;
  esac
  grep -qx "  $folder" <<<"$labels" || fail "No test carries the label $folder: a change there would need none."
done

expect() {
  local file=$1 test
  for test in "${@:2}"; do
    case $test in
      -*) [[ $(needs "$file") != *" ${test#-} "* ]] || fail "$file does not need ${test#-}: $(needs "$file")" ;;
      *) [[ $(needs "$file") = *" $test "* ]] || fail "$file needs $test: $(needs "$file")" ;;
    esac
  done
}
expect catalog/frmItems.cpp catalog_tests plays house_tests -base_tests -purchasing_tests
expect app/db/tsql/parser.h tsql_tests embedded_tests plays -base_tests
expect app/db/schema/procedures/bsp_SubsGrid.sql schema_tests plays -tsql_tests
expect base/platform/linux.cpp base_tests kill_tests reliability_tests
expect reports/files/DailySales.rpt reports_files_tests exchange_tests -base_tests
expect demo/data/items.tsv demo_tests reliability_tests -tsql_tests
expect tests/plays/items-type.play plays -catalog_tests
expect tests/db/answers/dates.answers embedded_tests -catalog_tests
expect docs/guide.md house_tests -catalog_tests
[[ $(tools/needed-tests.sh "$build" cmake/Merchantry.cmake) = "All tests:"* ]] || fail "cmake/Merchantry.cmake needs all tests"
exit $failed
