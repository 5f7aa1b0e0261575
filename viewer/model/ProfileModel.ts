import type { Profile } from '../document/profile';

/** A profile document with what the views ask of it. */
export class ProfileModel {
  readonly start: number;
  readonly end: number;

  constructor(readonly profile: Profile) {
    const { times, count } = profile.samples;
    this.start = count > 0 ? times[0] : 0;
    this.end = count > 0 ? times[count - 1] : 0;
  }
}
