// One measured value over time.

import {clock, stepPath, timeTicks, valueRange} from '../logic/scale.js';
import {withUnit} from '../logic/values.js';
import {fill, texts} from '../texts.js';
import {make, makeSvg} from './dom.js';

const box = {width: 300, height: 64};
const axis = 14;

export class Plot {
    constructor(label, unit) {
        this.label = label;
        this.unit = unit;
        this.line = makeSvg('path', {class: 'plot-line'});
        this.area = makeSvg('path', {class: 'plot-area'});
        this.ticks = makeSvg('g', {class: 'plot-ticks'});
        this.svg = makeSvg('svg', {
            class: 'plot', role: 'img', viewBox: `0 -4 ${box.width} ${box.height + axis + 4}`,
        }, this.ticks, this.area, this.line);
        this.high = make('span', {'aria-hidden': 'true'});
        this.low = make('span', {'aria-hidden': 'true'});
        this.node = make('div', {class: 'plot-box', hidden: true}, this.svg,
            make('div', {class: 'plot-range'}, this.high, this.low));
    }

    /// @param from when the first one came, @param to now; in ms
    draw(points, from, to) {
        this.node.hidden = points.length === 0;
        if (points.length === 0) {
            return;
        }
        const range = valueRange(points);
        const path = stepPath(points, from, to, range, box);
        const start = /^M([\d.]+)/.exec(path)?.[1] ?? '0';
        this.line.setAttribute('d', path);
        this.area.setAttribute('d', `${path}V${box.height}H${start}Z`);
        this.drawTicks(from, to);
        const values = points.map((point) => point.value);
        const [low, high] = [Math.min(...values), Math.max(...values)].map(
            (value) => withUnit(String(value), this.unit));
        this.high.textContent = high;
        this.low.textContent = low === high ? '' : low;
        this.svg.setAttribute('aria-label',
            fill(texts.plot.label, this.label, clock(from), low, high));
    }

    drawTicks(from, to) {
        const withSeconds = to - from < 4 * 60000;
        this.ticks.replaceChildren(...timeTicks(from, to, 4).map((time) => {
            const x = ((time - from) / Math.max(to - from, 1)) * box.width;
            const text = makeSvg('text', {
                x: Math.min(Math.max(x, 14), box.width - 14), y: box.height + 12,
            });
            text.textContent = clock(time, withSeconds);
            return makeSvg('g', {}, makeSvg('line', {x1: x, x2: x, y1: 0, y2: box.height}), text);
        }));
    }
}
