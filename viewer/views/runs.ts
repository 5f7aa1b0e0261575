/** A task's run as the page tells and selects it. */

import {formatDuration, formatShare, formatTime} from '../model/axis';
import type {Run, Tasks} from '../model/tasks';
import {shortName} from './dom';
import type {App} from './View';

/** Returns the lines that tell a run: which task, since when, and what it waited for before. */
export function describeRun(tasks: Tasks, run: Run): string[] {
  const lines = [`${shortName(run.label)} ran on CPU ${run.cpu} for ${
      formatDuration(run.end - run.start)}, from ${formatTime(run.start)} to ${formatTime(run.end)}`];
  const wait = tasks.waitBefore(run);
  if (wait === null) return [...lines, 'its first run'];
  const parts = [
    [wait.cpu, 'for a CPU'],
    [wait.io, 'for I/O'],
    [wait.gpu, 'for the GPU'],
  ] as const;
  const told = parts.filter(([seconds]) => seconds > 0)
                   .map(
                       ([seconds, what]) =>
                           `${formatDuration(seconds)} ${what} (${formatShare(seconds / wait.total)})`);
  return [
    ...lines,
    `${formatDuration(wait.total)} since it last ran` +
        (told.length > 0 ? `, of which it waited ${told.join(', ')}` : '')
  ];
}

/** Selects a run and the samples that were taken in it. */
export function selectRun(app: App, run: Run): void {
  const { store } = app;
  const { profile, timechart, filter } = store.state;
  const threads = profile?.profile.threads.flatMap(({ tid }, index) => (tid === run.task ? [index] : []));
  store.set({
    filter: {
      ...filter,
      start: run.start,
      end: run.end,
      threads: threads === undefined ? null : new Set(threads)
    },
    run,
  });
  app.announce(describeRun(timechart!.tasks, run).join('; '));
}
