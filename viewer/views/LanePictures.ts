import {Scale} from '../model/axis';
import type {Lane} from '../model/lanes';
import {element, equip, fitCanvas, isDark, pageColour, shortName} from './dom';
import {sliceOn} from './laneFacts';
import {groundColours, paintLane, type Picture, Pixels} from './laneRaster';
import {writeTexts} from './laneTexts';
import type {State} from './store';
import {SvgPicture} from './SvgPicture';
import {CanvasWriter} from './texts';
import {brushOf, describeSpan, gutter, shownExtent} from './timeAxis';
import type {TimeStage} from './TimeStage';

/** A row where it is drawn, in pixels of the page from the top of the view. */
export interface PlacedLane {
  readonly lane: Lane;
  readonly top: number;
  readonly height: number;
  readonly pinned: boolean;
}

const fontSize = 11;

/** The pictures of the rows in sight, and of selection, mark and cursor over them. */
export class LanePictures {
  readonly base = element('canvas', { role: 'img' });
  readonly overlay = element('canvas', { 'aria-hidden': true });
  readonly #context = this.base.getContext('2d', { alpha: false })!;
  readonly #writer = new CanvasWriter(this.#context);
  #pixels: Pixels|null = null;

  /** Paints row by row, and shows the rows once all are painted. */
  * paint(placed: readonly PlacedLane[], state: State, stage: TimeStage): Iterator<void> {
    const model = state.timechart!;
    const { base } = this;
    const writer = this.#writer;
    const { width: cssWidth, height } = stage;
    const pixels = (this.#pixels = Pixels.of(cssWidth, height, this.#pixels));
    const { width } = pixels;
    const scale = devicePixelRatio;
    const picture = pictureOf(state, width, scale);
    const { ground, line } = groundColours(picture.dark);
    pixels.clear(ground);
    // The rest is painted first: pinned rows cover what is scrolled below them.
    for (const row of [...placed].reverse()) {
      const top = Math.round(row.top * scale);
      const bottom = Math.round((row.top + row.height) * scale);
      if (row.pinned) pixels.box(0, width, top, bottom, ground);
      paintLane(pixels, row.lane, top, picture);
      pixels.box(0, width, bottom - 1, bottom, line);
      yield;
    }
    fitCanvas(base, cssWidth, height);
    this.#context.putImageData(pixels.image, 0, 0);
    writer.begin(fontSize * scale);
    for (const { lane, top } of placed) writeTexts(writer, model, lane, Math.round(top * scale), picture);
    equip(base, { 'aria-label': `${placed.length} rows, ${describeSpan(picture.axis.shown)}` });
  }

  /** Selected span, mark and cursor: painted apart, so that moving them leaves the rows alone. */
  paintOverlay(placed: readonly PlacedLane[], state: State, stage: TimeStage): void {
    const { overlay } = this;
    const { cursor, mark } = state;
    const brush = brushOf(state);
    const row = placed.find(({ lane }) => lane.path === cursor?.lane);
    overlay.hidden = !brush && mark === null && !row;
    if (overlay.hidden) return;
    const scale = fitCanvas(overlay, stage.width, stage.height);
    const { width, height } = overlay;
    const context = overlay.getContext('2d')!;
    const { axis, dark, close } = pictureOf(state, width, scale);
    const x = (time: number) => Math.round(axis.x(time));
    const line = (colour: string, left: number) => {
      context.fillStyle = pageColour(colour);
      context.fillRect(left, 0, 1, height);
    };
    context.clearRect(0, 0, width, height);
    if (brush) {
      const [left, right] = [x(brush.start), x(brush.end)];
      context.fillStyle = dark ? '#0008' : '#fff9';
      context.fillRect(0, 0, left, height);
      context.fillRect(right, 0, width, height);
      line('accent', left);
      line('accent', right - 1);
    }
    if (mark !== null) line('bad', x(mark));
    if (!cursor || !row) return;
    context.strokeStyle = '#e08a00';
    context.lineWidth = 2 * scale;
    const slice = sliceOn(row.lane, cursor.time, close);
    const left = x(slice?.start ?? cursor.time) - 1;
    const right = x(slice?.end ?? cursor.time);
    context.strokeRect(left, row.top * scale + 1, Math.max(2, right - left), row.height * scale - 3);
  }

  svg(placed: readonly PlacedLane[], state: State, width: number, height: number): string {
    const picture = pictureOf(state, width, 1);
    const svg = new SvgPicture(gutter + width, height, pageColour('ground'), gutter);
    for (const { lane, top, height: high } of placed) {
      const indent = 8 + lane.depth * 12;
      svg.text(shortName(lane.label), indent - gutter, top + high / 2, gutter - indent, pageColour('text'));
      paintLane(svg, lane, top, picture);
      writeTexts(svg, state.timechart!, lane, top, picture);
    }
    return svg.toString();
  }
}

/** Returns how rows are drawn `width` pixels wide. */
const pictureOf = (state: State, width: number, scale: number): Picture => ({
  axis: new Scale(shownExtent(state), width),
  close: state.timechart!.end,
  scale,
  dark: isDark(),
  shares: new Float32Array(width),
  used: new Float32Array(width),
});
