import type { Profile } from '../document/profile';
import type { Filter } from './filter';
import { type Grouping, groupings } from './groupings';
import { placesWithText, Selection } from './Selection';

/** A profile document with what the views ask of it; answers that cost are kept until the question changes. */
export class ProfileModel {
  readonly start: number;
  readonly end: number;
  private latest: Selection | null = null;
  private readonly made = new Map<string, Grouping>();
  private searched: { readonly text: string; readonly matches: Uint8Array } | null = null;

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

  /** Returns one of `groupings` for this profile. */
  grouping(id: string): Grouping {
    let grouping = this.made.get(id);
    if (grouping === undefined) this.made.set(id, (grouping = groupings[id].make(this.profile)));
    return grouping;
  }

  /** Returns a mark for each place that the search is for, or null if there is no search. */
  matches(search: string): Uint8Array | null {
    if (search === '') return null;
    if (this.searched?.text !== search) this.searched = { text: search, matches: placesWithText(this.profile, search) };
    return this.searched.matches;
  }
}
