# The annotated preferences of a preference file with their weights and penalties, as an awk user would read them.
{
  text = $0; sub(/#.*/, "", text)
  if (text ~ /^[ \t]*$/) next
  statement = statement $0
  if (index($0, ";") == 0) next
  if (statement ~ /^[ \t]*[A-Z_][^;]*;[ \t]*#[ \t]*[wp][ \t]+[0-9.]+/) {
    name = substr(statement, 1, index(statement, ";") - 1)
    if (name ~ /PERIOD|FREQUENCY|INPUT_SETUP|CLOCK_TO_OUT/) {
      gsub(/[ \t]/, "", name)
      split(substr(statement, index(statement, "#") + 1), pair)
      value[name, pair[1]] = pair[2]; value[name, pair[3]] = pair[4]; count++
    }
  }
  statement = ""
}
END { print count }
