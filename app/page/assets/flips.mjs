import { scoreOf } from "./score.mjs";

const most = 0.25; // A larger change of a weight is no small one.

// What one unit of a preference's weight, and of its penalty, gives a run: its slack on that side of the constraint.
function sides(run, count) {
  const met = new Float64Array(count);
  const missed = new Float64Array(count);
  run.slack.forEach((slack, i) => {
    if (slack > 0.001) met[run.preference[i]] = slack;
    else if (slack < -0.001) missed[run.preference[i]] = slack;
  });
  return { met, missed };
}

// The smallest change of one weight or penalty with which `behind` overtakes `ahead`.
function smallestChange(ahead, behind, gap, values) {
  let found = null;
  for (const [kind, side] of [["weight", "met"], ["penalty", "missed"]])
    values[kind].forEach((value, preference) => {
      const gain = behind[side][preference] - ahead[side][preference];
      const share = gap / gain / value;
      if (value > 0 && Math.abs(share) <= most && (!found || Math.abs(share) < Math.abs(found.share)))
        found = { kind, preference, value, share };
    });
  return found;
}

// For each run and the next one in `order`: how little turns them round, the best run first, then the least. Each is tried by the formula
// itself before it is believed.
export function flips(order, scores, weights, penalties) {
  const found = [];
  const parts = order.map((run) => sides(run, weights.length));
  for (let i = 0; i + 1 < order.length; ++i) {
    const gap = scores[order[i].index] - scores[order[i + 1].index];
    const flip = smallestChange(parts[i], parts[i + 1], gap, { weight: weights, penalty: penalties });
    if (!flip) continue;
    const tried = { weight: weights.slice(), penalty: penalties.slice() };
    flip.to = tried[flip.kind][flip.preference] = flip.value * (1 + flip.share * 1.01) + Math.sign(flip.share) * 1e-5;
    const [ahead, behind] = [order[i], order[i + 1]].map((run) => scoreOf(run, tried.weight, tried.penalty));
    if (behind > ahead) found.push({ ...flip, place: i + 1, ahead: order[i], behind: order[i + 1] });
  }
  return found.sort((a, b) => (b.place === 1) - (a.place === 1) || Math.abs(a.share) - Math.abs(b.share));
}
