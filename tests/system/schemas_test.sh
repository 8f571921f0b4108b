#!/usr/bin/env bash
# schemas_test.sh APP_TESTS SOURCE_DIR: what records_test wrote keeps to the schemas in docs/schemas, and what is broken
# does not.
set -euo pipefail

validate() { "$source/tests/system/validate_records.py" "$source/docs/schemas/$1.schema.json" "${@:2}"; }
refuse() {
  if validate "$@"; then
    echo "$2 breaks the schema, but is accepted"
    exit 1
  fi
}

tests=$(realpath "$1")
source=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
"$tests" --gtest_filter='RecordsTest.*' --gtest_brief=1
validate result sample_result.json
validate event sample_events.jsonl --lines
sed 's/"timing_score": 318/"timing_score": "318"/' sample_result.json >text.json
refuse result text.json
sed 's/"order"/"ordered"/' sample_result.json >renamed.json
refuse result renamed.json
sed '3s/"slot"/"job"/' sample_events.jsonl >renamed.jsonl
refuse event renamed.jsonl --lines
