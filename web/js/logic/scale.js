// From points in time to a line in a box. Pure.

/// The range of values that a plot shows: never empty, with a little air.
export function valueRange(points) {
    const values = points.map((point) => point.value);
    const [low, high] = [Math.min(...values), Math.max(...values)];
    const air = low === high ? Math.max(Math.abs(low) * 0.05, 0.5) : (high - low) * 0.08;
    return {low: low - air, high: high + air};
}

/// A path of steps: a value holds until the next one comes.
/// @param box {width, height}
export function stepPath(points, from, to, range, box) {
    const x = (time) => round(((time - from) / Math.max(to - from, 1)) * box.width);
    const y = (value) =>
        round(box.height - ((value - range.low) / (range.high - range.low)) * box.height);
    let path = '';
    points.forEach((point, index) => {
        path += index === 0 ? `M${x(Math.max(point.time, from))} ${y(point.value)}`
                            : `H${x(point.time)}V${y(point.value)}`;
    });
    return points.length === 0 ? '' : `${path}H${x(to)}`;
}

const round = (number) => Math.round(number * 10) / 10;

const steps = [1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200,
    86400];

/// Round moments for a time axis: at most @p count, in ms.
export function timeTicks(from, to, count) {
    const needed = (to - from) / 1000 / count;
    const step = (steps.find((each) => each >= needed) ?? Math.ceil(needed / 86400) * 86400) * 1000;
    // Full hours of the clock on the wall, not of Greenwich.
    const zone = new Date(from).getTimezoneOffset() * 60000;
    const ticks = [];
    for (let time = Math.ceil((from - zone) / step) * step + zone; time <= to; time += step) {
        ticks.push(time);
    }
    return ticks;
}

/// "14:05", or with seconds where minutes would be alike.
export function clock(time, withSeconds) {
    const date = new Date(time);
    const two = (number) => String(number).padStart(2, '0');
    const text = `${two(date.getHours())}:${two(date.getMinutes())}`;
    return withSeconds ? `${text}:${two(date.getSeconds())}` : text;
}
