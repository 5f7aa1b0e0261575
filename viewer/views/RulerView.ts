import {formatDuration, formatTime, ticks} from '../model/axis';
import type {State} from './store';
import {element, fitCanvas, isDark} from './dom';
import {axisWidth, brushOf, describeSpan, setBrush, shownExtent, timeGestures, wholeExtent} from './timeAxis';
import type {App, View} from './View';

const height = 34;

/** The scale of the time axis, the selected span and the measured one. */
export class RulerView implements View {
  readonly id = 'ruler';
  readonly title = 'Time';
  readonly zone = 'time';
  private readonly picture = element('canvas', { role: 'img' });
  private readonly label = element('div', { class: 'ruler-label' });

  available({ profile, timechart }: State): boolean { return profile !== null || timechart !== null; }

  mount(host: HTMLElement, app: App): void {
    host.append(this.label, this.picture);
    timeGestures(host, app, {
      width: () => axisWidth(host),
      hover: (time) => app.hover(time),
      click: () => setBrush(app.store, null),
    });
  }

  draw(state: State): void {
    const width = axisWidth(this.label.parentElement!);
    const scale = fitCanvas(this.picture, width, height);
    const context = this.picture.getContext('2d')!;
    context.setTransform(scale, 0, 0, scale, 0, 0);
    const style = getComputedStyle(this.label);
    context.clearRect(0, 0, width, height);
    const shown = shownExtent(state);
    const brush = brushOf(state);
    const x = (time: number) => ((time - shown.start) / (shown.end - shown.start)) * width;
    if (brush !== null) {
      context.fillStyle = isDark() ? '#2f4a7a' : '#cfe0ff';
      context.fillRect(x(brush.start), 0, Math.max(1, x(brush.end) - x(brush.start)), height);
    }
    this.drawOverview(context, state, width);
    context.font = '11px system-ui, sans-serif';
    context.fillStyle = style.color;
    for (const { time, label } of ticks(shown, width / 110)) {
      context.fillRect(Math.round(x(time)), height - 6, 1, 6);
      context.fillText(label, x(time) + 4, height - 5);
    }
    if (state.mark !== null) {
      context.fillStyle = '#d0342c';
      context.fillRect(Math.round(x(state.mark)) - 1, 6, 2, height - 6);
    }
    const told = brush === null ? `${formatDuration(shown.end - shown.start)} shown` :
                                  `${formatDuration(brush.end - brush.start)} selected`;
    if (this.label.textContent !== told) this.label.textContent = told;
    this.picture.setAttribute(
        'aria-label',
        `Time from ${formatTime(shown.start)} to ${formatTime(shown.end)}` +
            (brush === null ? '' : `; selected: ${describeSpan(brush)}`),
    );
  }

  key(): boolean { return false; }

  /** A thin bar over the whole axis with the shown part of it. */
  private drawOverview(context: CanvasRenderingContext2D, state: State, width: number): void {
    const whole = wholeExtent(state);
    const shown = shownExtent(state);
    const x = (time: number) => ((time - whole.start) / (whole.end - whole.start)) * width;
    context.fillStyle = isDark() ? '#3a3f47' : '#dfe3e8';
    context.fillRect(0, 0, width, 4);
    context.fillStyle = isDark() ? '#8fb4ff' : '#3b6fd4';
    context.fillRect(x(shown.start), 0, Math.max(3, x(shown.end) - x(shown.start)), 4);
  }
}
