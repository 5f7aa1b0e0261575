import type {Profile} from '../document/profile';
import {everything, type Filter} from './filter';
import {type Grouping, groupings} from './groupings';
import {kept} from './maps';
import {placesWithText, Selection} from './Selection';

/**
 * A profile document with what the views ask of it; answers that cost are kept until the question changes.
 */
export class ProfileModel {
  readonly start: number;
  readonly end: number;
  private latest: Selection|null = null;
  private latestOfAllTime: Selection|null = null;
  private readonly made = new Map<string, Grouping>();
  private texted: Filter = everything;
  private searched: { readonly text: string; readonly matches: Uint8Array }|null = null;

  constructor(readonly profile: Profile) {
    const { times, count } = profile.samples;
    this.start = count > 0 ? times[0] : 0;
    this.end = count > 0 ? times[count - 1] : 0;
  }

  /** Returns the selection of the filter. */
  selection(filter: Filter): Selection {
    if (this.latest?.filter !== filter) this.latest = new Selection(this.profile, filter);
    return this.latest;
  }

  /** Returns the selection of the filter without its brush, which stays the same while the brush moves. */
  selectionOfAllTime({ cores, threads, text }: Filter): Selection {
    const known = this.latestOfAllTime?.filter;
    if (known?.cores !== cores || known.threads !== threads || known.text !== text) {
      this.latestOfAllTime = new Selection(this.profile, {...everything, cores, threads, text });
    }
    return this.latestOfAllTime!;
  }

  /** Returns the filter that has this text only. */
  textFilter(text: string): Filter {
    if (this.texted.text !== text) this.texted = {...everything, text };
    return this.texted;
  }

  /** Returns one of `groupings` for this profile. */
  grouping(id: string): Grouping { return kept(this.made, id, () => groupings[id].make(this.profile)); }

  /** Returns a mark for each place that the search is for, or null if there is no search. */
  matches(search: string): Uint8Array|null {
    if (search === '') return null;
    if (this.searched?.text !== search)
      this.searched = { text: search, matches: placesWithText(this.profile, search) };
    return this.searched.matches;
  }

  /** Returns how many selected samples have a place that the search is for, or null if there is no search. */
  matchedSamples(filter: Filter, search: string): number|null {
    const matches = this.matches(search);
    if (!matches) return null;
    const { parents, places, totals } = this.selection(filter);
    const inside = new Uint8Array(places.length);
    let samples = 0;
    for (let node = 1; node < places.length; ++node) {
      inside[node] = inside[parents[node]] | matches[places[node]];
      if (inside[node] === 1 && inside[parents[node]] === 0) samples += totals[node];
    }
    return samples;
  }
}
