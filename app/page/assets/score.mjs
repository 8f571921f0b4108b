// The library's own formula and order, in 32-bit floats as it computes them.

// What a slack (ns) gives: nothing within 0.001 ns of the constraint.
export function contribution(slack, weight, penalty) {
  if (slack > 0.001) return Math.fround(slack * weight);
  if (slack < -0.001) return Math.fround(slack * penalty);
  return 0;
}

// `weights` and `penalties` are by preference; the run's columns are added up in their order.
export function scoreOf(run, weights, penalties) {
  let score = 0;
  for (let i = 0; i < run.slack.length; ++i) {
    const preference = run.preference[i];
    score = Math.fround(score + contribution(run.slack[i], weights[preference], penalties[preference]));
  }
  return score;
}

// A timing score is compared unsigned: -1, none, comes behind all others.
const unsigned = (score) => BigInt.asUintN(64, BigInt(score));

function ranksBefore(b, a, scores) {
  if (scores[b.index] > scores[a.index]) return true;
  if (scores[b.index] !== scores[a.index] || b.timingScore === null) return false;
  return a.timingScore === null || unsigned(b.timingScore) < unsigned(a.timingScore);
}

// The finished runs, best first; ties stay in plan order. Neighbours are exchanged as the library does it, so that
// scores that cannot be compared come out in the same places too.
export function ranked(runs, scores) {
  const order = [...runs];
  for (let pass = order.length - 1; pass > 0; --pass)
    for (let j = 0; j < pass; ++j)
      if (ranksBefore(order[j + 1], order[j], scores)) [order[j], order[j + 1]] = [order[j + 1], order[j]];
  return order;
}
