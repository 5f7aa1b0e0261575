import {formatDuration, Scale, ticks} from '../model/axis';

import {div, element, equip, fitCanvas, pageColour} from './dom';

import type {State} from './store';
import {brushOf, describeSpan, scaleOf, setBrush, timeGestures, wholeExtent} from './timeAxis';
import type {App, View} from './View';

const height = 34;
const overviewHeight = 4;

/** The scale of the time axis, the selected span and the measured one. */
export class RulerView implements View {
  readonly id = 'ruler';
  readonly title = 'Time';
  readonly zone = 'time';
  readonly #canvas = element('canvas', { role: 'img' });
  readonly #label = div('ruler-label');
  #host!: HTMLElement;

  available(state: State): boolean { return state.profile !== null || state.timechart !== null; }

  mount(host: HTMLElement, app: App): void {
    this.#host = host;
    host.append(this.#label, this.#canvas);
    timeGestures(
        host, host, app, { hover: (time) => app.hover(time), click: () => setBrush(app.store, null) });
  }

  draw(state: State): void {
    const scale = scaleOf(state, this.#host);
    const { shown, width } = scale;
    const context = this.#canvas.getContext('2d')!;
    const density = fitCanvas(this.#canvas, width, height);
    context.setTransform(density, 0, 0, density, 0, 0);
    context.clearRect(0, 0, width, height);
    const box = (colour: string, left: number, top: number, wide: number, high: number) => {
      context.fillStyle = pageColour(colour);
      context.fillRect(left, top, wide, high);
    };
    const brush = brushOf(state);
    if (brush)
      box('bar', scale.x(brush.start), 0, Math.max(1, (brush.end - brush.start) / scale.pixel), height);
    // A thin bar over the whole axis with the shown part of it.
    const whole = new Scale(wholeExtent(state), width);
    box('line', 0, 0, width, overviewHeight);
    box('accent', whole.x(shown.start), 0, Math.max(3, (shown.end - shown.start) / whole.pixel),
        overviewHeight);
    context.font = '11px system-ui, sans-serif';
    for (const { time, label } of ticks(shown, width / 110)) {
      box('quiet', Math.round(scale.x(time)), height - 6, 1, 6);
      context.fillText(label, scale.x(time) + 4, height - 5);
    }
    if (state.mark !== null) box('bad', Math.round(scale.x(state.mark)) - 1, 6, 2, height - 6);
    const { start, end } = brush ?? shown;
    this.#label.textContent = `${formatDuration(end - start)} ${brush ? 'selected' : 'shown'}`;
    const selected = brush ? `; selected: ${describeSpan(brush)}` : '';
    equip(this.#canvas, { 'aria-label': `Time: ${describeSpan(shown)}${selected}` });
  }
}
