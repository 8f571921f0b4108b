// The number of an annotation: digits that the library reads and multiplies by the kind's default to get `value`.
// The shortest such; null where there is none, since annotations know no sign and nothing helps a default of 0.
export function annotationNumber(value, unit) {
  const number = value / unit;
  if (unit === 0 || !(number >= 0 && number < 1e20)) return null;
  for (let digits = 0; digits <= 20; ++digits) {
    const text = number.toFixed(digits);
    if (Math.fround(Math.fround(Number(text)) * unit) === value) return text;
  }
  return number.toFixed(20); // Between two products of 32-bit floats: the nearest.
}

// "# w 2 p 4", or "" where neither can be given.
export function annotation(preference, weight, penalty) {
  const pairs = [["w", annotationNumber(weight, preference.default_weight)],
    ["p", annotationNumber(penalty, preference.default_penalty)]];
  const given = pairs.filter(([, number]) => number !== null).map(([letter, number]) => `${letter} ${number}`);
  return given.length > 0 ? `# ${given.join(" ")}` : "";
}

// A statement for each preference whose weights are not, or were not, its kind's. The comment of a long one stands on
// a line of its own, since lines are read in pieces.
export function annotations(preferences, weights, penalties) {
  const lines = preferences.flatMap((preference, i) => {
    const plain = (weight, penalty) => weight === preference.default_weight && penalty === preference.default_penalty;
    const text = annotation(preference, weights[i], penalties[i]);
    if (text === "" || (plain(weights[i], penalties[i]) && plain(preference.weight, preference.penalty))) return [];
    return [`${preference.name}${preference.name.length > 150 ? "\n" : " "}; ${text}`];
  });
  return lines.join("\n");
}
