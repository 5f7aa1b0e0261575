import type {Profile} from '../document/profile';
import {everything, type Filter} from './filter';
import {type Grouping, groupings} from './groupings';
import {kept, latest} from './maps';
import {nodesWithText, placesWithText, Selection} from './Selection';

/**
 * A profile document with what the views ask of it; answers that cost are kept until the question changes.
 */
export class ProfileModel {
  declare readonly start: number;
  declare readonly end: number;
  /** Returns the selection of a filter. */
  readonly selection = latest((filter: Filter) => new Selection(this.profile, filter));
  /** Returns the filter that has this text only. */
  readonly textFilter = latest((text: string): Filter => ({...everything, text }));
  /** Returns a mark for each place that the search is for, or null if there is no search. */
  readonly matches =
      latest((search: string) => (search === '' ? null : placesWithText(this.profile, search)));
  readonly #nodesWithText = latest((search: string) => nodesWithText(this.profile, search));
  readonly #untimed = latest(
      (cores: Filter['cores'], threads: Filter['threads'], text: string) =>
          new Selection(this.profile, {...everything, cores, threads, text }));
  readonly #made = new Map<string, Grouping>();

  constructor(readonly profile: Profile) {
    const { count } = profile.samples;
    this.start = count > 0 ? profile.samples.times[0] : 0;
    this.end = count > 0 ? profile.samples.times[count - 1] : 0;
  }

  /** Returns the selection of the filter without its brush, which stays the same while the brush moves. */
  selectionOfAllTime(filter: Filter): Selection {
    return this.#untimed(filter.cores, filter.threads, filter.text);
  }

  /** Returns one of `groupings` for this profile. */
  grouping(id: string): Grouping { return kept(this.#made, id, () => groupings[id].make(this.profile)); }

  /** Returns how many selected samples have a place that the search is for, or null if there is no search. */
  matchedSamples(filter: Filter, search: string): number|null {
    if (search === '') return null;
    const marks = this.#nodesWithText(search);
    return this.selection(filter).selves.reduce((sum, samples, node) => sum + marks[node] * samples, 0);
  }
}
