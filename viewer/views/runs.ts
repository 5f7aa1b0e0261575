/** A task's run, as shown and selected by the page. */

import {type Direction, formatDuration, formatShare, formatTime} from '../model/axis';
import type {Run, Tasks} from '../model/tasks';
import {shortName} from './dom';
import {showTime} from './timeAxis';
import type {App} from './View';

/** Returns the lines that tell a run: which task, since when, and what it waited for before. */
export function describeRun(tasks: Tasks, run: Run): string[] {
  const ran = `${shortName(run.label)} ran on CPU ${run.cpu} for ${
      formatDuration(run.end - run.start)}, from ${formatTime(run.start)} to ${formatTime(run.end)}`;
  const wait = tasks.waitBefore(run);
  if (!wait) return [ran, 'its first run'];
  const parts: readonly(readonly[number, string])[] =
      [[wait.waitCpu, 'for a CPU'], [wait.waitIo, 'for I/O'], [wait.waitGpu, 'for the GPU']];
  const told = parts.filter(([seconds]) => seconds > 0)
                   .map(
                       ([seconds, what]) =>
                           `${formatDuration(seconds)} ${what} (${formatShare(seconds / wait.total)})`);
  const waited = told.length > 0 ? `, of which it waited ${told.join(', ')}` : '';
  return [ran, `${formatDuration(wait.total)} since it last ran${waited}`];
}

/** Selects a run and the samples that were taken in it. */
export function selectRun(app: App, run: Run): void {
  const { state } = app.store;
  const threads =
      state.profile?.profile.threads.flatMap((thread, index) => (thread.tid === run.task ? [index] : []));
  app.store.refine({ start: run.start, end: run.end, threads: threads ? new Set(threads) : null }, run);
  app.announce(describeRun(state.timechart!.tasks, run).join('; '));
}

/** Selects the task's first run after a time, or the last one before it; returns it, or null without one. */
export function selectBeside(app: App, task: number, time: number, direction: Direction): Run|null {
  const run = app.store.state.timechart!.tasks.runBeside(task, time, direction);
  if (!run)
    app.announce(`No ${direction > 0 ? 'later' : 'earlier'} run of this task`);
  else {
    showTime(app.store, run.start);
    selectRun(app, run);
  }
  return run;
}
